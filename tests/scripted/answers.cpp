#include "scripted/scripted.hpp"

#include <algorithm>

// How every entry point is recorded and answered, made from the command lists
// of the wire.

namespace scripted {
namespace {

namespace block = nq::block;

constexpr std::uint64_t rubbish = 0xA5A5A5A5A5A5A5A0U;
constexpr std::int32_t invalid_value = -30;

// Where a mapping or an allocation of shared virtual memory is said to be.
alignas(4096) std::array<unsigned char, 65536> host_memory;

template <class T>
constexpr bool is_raw_handle = std::is_pointer_v<T> && !std::is_void_v<std::remove_pointer_t<T>>;

/// A block while it is answered.
template <class Block>
class answerer {
public:
    answerer(libnq& self, Block& block, call& record) : self_(self), block_(block), record_(record) {}

    int run() {
        if (auto const failure = self_.take_failure(name_of<Block>())) {
            spoil();
            if (failure->result == 0) {
                set_status(failure->status);
            }
            return failure->result;
        }
        set_status(0);
        if constexpr (requires { block_.result; }) {
            block_.result = nullptr;
        }
        auto const scripted = self_.answers.find(name_of<Block>());
        if (scripted == self_.answers.end() || !scripted->second(&block_)) {
            act();
        }
        return nq::result::success;
    }

private:
    static constexpr bool begins_with(std::string_view prefix) { return name_of<Block>().starts_with(prefix); }

    void* object() const {
        void* object;
        std::memcpy(&object, &block_, sizeof object);
        return object;
    }

    void set_status(std::int32_t status) {
        if constexpr (requires { block_.status; }) {
            block_.status = status;
        } else if constexpr (requires { block_.error_code; }) {
            block_.error_code = status;
        }
    }

    void spoil() {
        set_status(static_cast<std::int32_t>(rubbish >> 32));
        if constexpr (requires { block_.result; }) {
            block_.result = reinterpret_cast<decltype(block_.result)>(rubbish);
        }
        if constexpr (requires { *block_.event = nullptr; }) {
            if (block_.event != nullptr) {
                *block_.event = reinterpret_cast<_nq_cl_event*>(rubbish);
            }
        }
    }

    void act() {
        if constexpr (std::same_as<Block, block::call_handle_device>) {
            // answered where the call handle is known
        } else if constexpr (begins_with("clRetain")) {
            count(1);
        } else if constexpr (begins_with("clRelease")) {
            count(-1);
        } else if constexpr (requires { block_.param_value_size_ret; }) {
            info();
        } else {
            results();
            listing();
        }
    }

    void count(int change) {
        auto const known = self_.held.find(object());
        bool const held = known != self_.held.end() && known->second + change >= 0;
        if (held) {
            known->second += change;
            return;
        }
        set_status(invalid_value);
        if (object() != nullptr) {
            self_.faults.push_back(std::string(name_of<Block>()) + " of a handle that nobody holds");
        }
    }

    void info() {
        auto const scripted = self_.replies.find({name_of<Block>(), block_.param_name});
        if (scripted != self_.replies.end()) {
            write(scripted->second);
        } else {
            set_status(invalid_value);
            self_.faults.push_back(std::string(name_of<Block>()) +
                                   " of a name that nobody scripted: " + std::to_string(block_.param_name));
        }
    }

    void write(std::string const& bytes) {
        if (block_.param_value != nullptr) {
            std::memcpy(block_.param_value, bytes.data(), std::min(block_.param_value_size, bytes.size()));
        }
        if (block_.param_value_size_ret != nullptr) {
            *block_.param_value_size_ret = bytes.size();
        }
    }

    void results() {
        if constexpr (requires { block_.result; }) {
            if constexpr (is_raw_handle<decltype(block_.result)>) {
                make(block_.result);
            } else if constexpr (!begins_with("clGetExtensionFunctionAddress")) {
                record_.made = block_.result = host_memory.data();
            }
        }
        if constexpr (requires { make(*block_.event); }) {
            if (block_.event != nullptr) {
                make(*block_.event);
            }
        }
    }

    template <class Raw>
    void make(Raw*& handle) {
        record_.made = handle = self_.make<Raw>(1);
    }

    void listing() {
        if constexpr (std::same_as<Block, block::clCreateSubDevices>) {
            list(block_.out_devices, block_.num_devices, block_.num_devices_ret, 1);
        } else if constexpr (std::same_as<Block, block::clCreateKernelsInProgram>) {
            list(block_.kernels, block_.num_kernels, block_.num_kernels_ret, 1);
        } else if constexpr (std::same_as<Block, block::clGetDeviceIDs>) {
            list(block_.devices, block_.num_entries, block_.num_devices, 0);
        } else if constexpr (std::same_as<Block, block::clGetSupportedImageFormats>) {
            auto const scripted = self_.replies.find({name_of<Block>(), block_.image_type});
            image_formats(scripted != self_.replies.end() ? scripted->second : std::string());
        }
    }

    template <class Raw>
    void list(Raw** handles, std::uint32_t capacity, std::uint32_t* count, int references) {
        auto const counted = self_.counts.find(name_of<Block>());
        std::uint32_t const all = counted != self_.counts.end() ? counted->second : 2;
        for (std::uint32_t i = 0; handles != nullptr && i != std::min(all, capacity); ++i) {
            record_.made = handles[i] = self_.make<Raw>(references);
        }
        if (count != nullptr) {
            *count = all;
        }
    }

    void image_formats(std::string const& bytes) {
        constexpr std::size_t format_size = 8;
        if (block_.image_formats != nullptr) {
            std::memcpy(block_.image_formats, bytes.data(), std::min(bytes.size(), block_.num_entries * format_size));
        }
        if (block_.num_image_formats != nullptr) {
            *block_.num_image_formats = static_cast<std::uint32_t>(bytes.size() / format_size);
        }
    }

    libnq& self_;
    Block& block_;
    call& record_;
};

using performer = int (*)(libnq&, nq::capability_node, void*, call&);

template <class Block>
int perform_as(libnq& self, nq::capability_node node, void* memory, call& record) {
    auto& block = *static_cast<Block*>(memory);
    record.name = name_of<Block>();
    record.inputs = inputs_of(block);
    int const result = answerer<Block>(self, block, record).run();
    if constexpr (std::same_as<Block, block::call_handle_device>) {
        if (result == nq::result::success) {
            auto& device = self.devices[node.first];
            device = device != nullptr ? device : self.make<_nq_cl_device_id>();
            block.result = static_cast<_nq_cl_device_id*>(device);
        }
    }
    return result;
}

template <class... Blocks>
performer find(nq::command_list<Blocks...>, std::uint32_t id) {
    static constexpr std::array<performer, sizeof...(Blocks)> performers = {perform_as<Blocks>...};
    return id != 0 && id <= performers.size() ? performers[id - 1] : nullptr;
}

} // namespace

int answer(libnq& self, nq::capability_node node, void* block, call& record) {
    using finder = performer (*)(std::uint32_t);
    using enum nq::capability;
    static constexpr finder finders[] = {[](std::uint32_t id) { return find(nq::commands<opencl_1_0>(), id); },
                                         [](std::uint32_t id) { return find(nq::commands<opencl_1_1>(), id); },
                                         [](std::uint32_t id) { return find(nq::commands<opencl_1_2>(), id); },
                                         [](std::uint32_t id) { return find(nq::commands<opencl_2_0>(), id); },
                                         [](std::uint32_t id) { return find(nq::commands<opencl_2_1>(), id); },
                                         [](std::uint32_t id) { return find(nq::commands<opencl_2_2>(), id); }};
    if (node.second == 0 || node.second > std::size(finders)) {
        return nq::result::unrecoverable;
    }
    performer const perform = finders[node.second - 1](record.id);
    return perform != nullptr ? perform(self, node, block, record) : nq::result::invalid_command_id;
}

} // namespace scripted
