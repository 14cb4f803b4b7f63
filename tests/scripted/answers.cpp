#include "scripted/scripted.hpp"

#include <algorithm>

// How every entry point is recorded and answered, made from the command lists of the wire.

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
struct answerer {
    libnq& self;
    Block& block;
    call& record;

    static constexpr std::string_view name = name_of<Block>();

    int run() {
        if (auto const failure = self.take_failure(name)) {
            record.has_failed = true;
            spoil();
            if (failure->result == 0) {
                set_status(failure->status);
            }
            return failure->result;
        }
        set_status(0);
        if constexpr (requires { block.result; }) {
            block.result = nullptr;
        }
        auto const scripted = self.answers.find(name);
        if (scripted == self.answers.end() || !scripted->second(&block)) {
            act();
        }
        return nq::result::success;
    }

    void set_status(std::int32_t status) {
        if constexpr (requires { block.status; }) {
            block.status = status;
        } else if constexpr (requires { block.error_code; }) {
            block.error_code = status;
        }
    }

    void spoil() {
        set_status(static_cast<std::int32_t>(rubbish >> 32));
        if constexpr (requires { block.result; }) {
            block.result = reinterpret_cast<decltype(block.result)>(rubbish);
        }
        if constexpr (requires { *block.event = nullptr; }) {
            if (block.event != nullptr) {
                *block.event = reinterpret_cast<_nq_cl_event*>(rubbish);
            }
        }
    }

    void refuse(std::string const& why) {
        set_status(invalid_value);
        self.faults.push_back(std::string(name) + why);
    }

    void act() {
        if constexpr (name.starts_with("clRetain") || name.starts_with("clRelease")) {
            count(name.starts_with("clRetain") ? 1 : -1);
        } else if constexpr (requires { block.param_value_size_ret; }) {
            auto const scripted = self.replies.find({name, block.param_name});
            if (scripted != self.replies.end()) {
                write(scripted->second, block.param_value, block.param_value_size, block.param_value_size_ret, 1);
            } else {
                refuse(" of a name that nobody scripted: " + std::to_string(block.param_name));
            }
        } else if constexpr (std::same_as<Block, block::clGetSupportedImageFormats>) {
            write(self.replies[{name, block.image_type}], block.image_formats, block.num_entries,
                  block.num_image_formats, 8);
        } else {
            results();
            listing();
        }
    }

    void count(int change) {
        void* object;
        std::memcpy(&object, &block, sizeof object);
        auto const known = self.references.find(object);
        if (known != self.references.end() && known->second + change >= 0) {
            known->second += change;
        } else if (object != nullptr) {
            refuse(" of a handle that nobody holds");
        } else {
            set_status(invalid_value);
        }
    }

    void write(std::string const& bytes, void* place, std::size_t capacity, auto* count, std::size_t element_size) {
        if (place != nullptr) {
            std::memcpy(place, bytes.data(), std::min(capacity * element_size, bytes.size()));
        }
        if (count != nullptr) {
            *count = static_cast<std::remove_pointer_t<decltype(count)>>(bytes.size() / element_size);
        }
    }

    void results() {
        if constexpr (std::same_as<Block, block::call_handle_device>) {
            make(block.result, 0);
        } else if constexpr (requires { block.result; } && !name.starts_with("clGetExtensionFunctionAddress")) {
            if constexpr (is_raw_handle<decltype(block.result)>) {
                make(block.result, 1);
            } else {
                record.made = block.result = host_memory.data();
            }
        }
        if constexpr (requires { make(*block.event, 1); }) {
            if (block.event != nullptr) {
                make(*block.event, 1);
            }
        }
    }

    void listing() {
        if constexpr (std::same_as<Block, block::clCreateSubDevices>) {
            list(block.out_devices, block.num_devices, block.num_devices_ret, 1);
        } else if constexpr (std::same_as<Block, block::clCreateKernelsInProgram>) {
            list(block.kernels, block.num_kernels, block.num_kernels_ret, 1);
        } else if constexpr (std::same_as<Block, block::clGetDeviceIDs>) {
            list(block.devices, block.num_entries, block.num_devices, 0);
        }
    }

    template <class Raw>
    void list(Raw** handles, std::uint32_t capacity, std::uint32_t* count, int references) {
        for (std::uint32_t i = 0; handles != nullptr && i != std::min(self.listed, capacity); ++i) {
            make(handles[i], references);
        }
        if (count != nullptr) {
            *count = self.listed;
        }
    }

    template <class Raw>
    void make(Raw*& handle, int references) {
        record.made = handle = self.make<Raw>(references);
    }
};

using performer = int (*)(libnq&, void*, call&);

template <class Block>
int perform_as(libnq& self, void* memory, call& record) {
    auto& block = *static_cast<Block*>(memory);
    record.name = name_of<Block>();
    if (self.notes_inputs) {
        record.inputs = inputs_of(block);
    }
    record.has_status = requires { block.status; }
    || requires { block.error_code; };
    return answerer<Block>{self, block, record}.run();
}

template <class... Blocks>
performer find(nq::command_list<Blocks...>, std::uint32_t id) {
    static constexpr std::array<performer, sizeof...(Blocks)> performers = {perform_as<Blocks>...};
    return id != 0 && id <= performers.size() ? performers[id - 1] : nullptr;
}

using enum nq::capability;
constexpr performer (*finders[])(std::uint32_t) = {
    [](std::uint32_t id) { return find(nq::commands<opencl_1_0>(), id); },
    [](std::uint32_t id) { return find(nq::commands<opencl_1_1>(), id); },
    [](std::uint32_t id) { return find(nq::commands<opencl_1_2>(), id); },
    [](std::uint32_t id) { return find(nq::commands<opencl_2_0>(), id); },
    [](std::uint32_t id) { return find(nq::commands<opencl_2_1>(), id); },
    [](std::uint32_t id) { return find(nq::commands<opencl_2_2>(), id); }};

} // namespace

int libnq::answer(nq::capability_node node, void* block, call& record) {
    if (node.second == 0 || node.second > std::size(finders)) {
        return nq::result::unrecoverable;
    }
    performer const performed = finders[node.second - 1](record.id);
    return performed != nullptr ? performed(*this, block, record) : nq::result::invalid_command_id;
}

} // namespace scripted
