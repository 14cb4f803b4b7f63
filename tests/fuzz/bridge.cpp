// The functions of libnq, as the bridge has them, on arbitrary blocks: ids, null and closed handles, null and empty
// lists, counts, flags, on each OpenCL implementation that has guards of its own. Blocks are made from their
// description. The block and each list in it are as long as the description says and end with the memory that they are
// in, so that AddressSanitizer sees who reads beyond. OpenCL answers what the input says, and throws at times.

#include "bridge/call_handle.hpp"
#include "bridge/functions.hpp"
#include "bridge/loader.hpp"
#include "fuzz/input.hpp"

#include <nq/describe.hpp>
#include <nq/nq.hpp>

#include <memory>
#include <new>
#include <string_view>
#include <vector>

namespace {

using fuzz::expect;

constexpr std::size_t versions = nq::bridge::version_count;
char const* const platform_names[] = {"Portable Computing Language", "rusticl", "Oclgrind", "Intel(R) OpenCL", "other"};

/// What stands for OpenCL's objects; never read.
char objects[16];

fuzz::input* input = nullptr; // none during discovery
bool was_called = false;

template <class T>
void write(T* place, T value) {
    if (place != nullptr) {
        *place = value;
    }
}

/// Fills the room that is offered for a reply, and tells any size.
void reply(cl_uint name, std::size_t size, void* value, std::size_t* needed) {
    bool const in_words = name == CL_PROGRAM_BINARY_SIZES;
    if (value != nullptr && name != CL_PROGRAM_BINARIES) { // which is a list of places
        auto* const bytes = static_cast<unsigned char*>(value);
        input->fill(bytes, size);
        for (std::size_t i = 0; in_words && i != size; ++i) {
            bytes[i] = i % sizeof(std::size_t) == 0 ? bytes[i] : 0; // binaries are small
        }
    }
    write(needed, static_cast<std::size_t>(input->number()));
}

/// Looks at the arguments as an implementation does that relies on the bridge.
template <class First, class Second>
void look_at(First first, Second second) {
    if constexpr (std::is_same_v<First, cl_uint> && std::is_same_v<Second, cl_event const*>) {
        expect(first == 0 || second != nullptr, "a wait list is null");
        for (cl_uint i = 0; i != first; ++i) {
            expect(second[i] != nullptr, "an event of a wait list is null");
        }
    }
}

template <class First>
void look_at_all(First) {}
template <class First, class Second, class... Rest>
void look_at_all(First first, Second second, Rest... rest) {
    look_at(first, second);
    look_at_all(second, rest...);
}

template <class Place>
void make_event([[maybe_unused]] Place place) {
    if constexpr (std::is_same_v<Place, cl_event*>) {
        write(place, reinterpret_cast<cl_event>(objects));
    }
}

template <class... Parameters>
void answer(Parameters... arguments) {
    std::tuple const all(arguments...);
    constexpr std::size_t n = sizeof...(Parameters);
    if constexpr (n != 0) {
        look_at_all(arguments...);
    }
    if constexpr (n >= 4) {
        using types = std::tuple<Parameters...>;
        if constexpr (std::is_same_v<std::tuple_element_t<n - 3, types>, std::size_t> &&
                      std::is_same_v<std::tuple_element_t<n - 2, types>, void*> &&
                      std::is_same_v<std::tuple_element_t<n - 1, types>, std::size_t*>) {
            cl_uint name = 0; // sub-groups have an input before
            if constexpr (std::is_same_v<std::tuple_element_t<n - 4, types>, cl_uint>) {
                name = std::get<n - 4>(all);
            }
            reply(name, std::get<n - 3>(all), std::get<n - 2>(all), std::get<n - 1>(all));
        }
    }
    (make_event(arguments), ...);
}

// What the machine is made of while it is discovered: platforms that differ by name, with one device each.
cl_int list_platforms(cl_uint count, cl_platform_id* platforms, cl_uint* total) {
    constexpr auto all = static_cast<cl_uint>(std::size(platform_names));
    for (cl_uint i = 0; platforms != nullptr && i < std::min(count, all); ++i) {
        platforms[i] = reinterpret_cast<cl_platform_id>(objects + i + 1);
    }
    write(total, all);
    return CL_SUCCESS;
}

cl_int list_devices(cl_platform_id platform, cl_device_type type, cl_uint count, cl_device_id* devices,
                    cl_uint* total) {
    if (input != nullptr) {
        return opencl_function<cl_int>("clGetDeviceIDs", platform, type, count, devices, total);
    }
    if (devices != nullptr && count != 0) {
        *devices = reinterpret_cast<cl_device_id>(platform);
    }
    write(total, cl_uint{1});
    return CL_SUCCESS;
}

template <class Object>
cl_int tell(Object object, cl_uint name, std::size_t size, void* value, std::size_t* needed) {
    if (input != nullptr) {
        return opencl_function<cl_int>("an info function", object, name, size, value, needed);
    }
    std::string const text = name == CL_PLATFORM_NAME && std::is_same_v<Object, cl_platform_id>
                                 ? platform_names[reinterpret_cast<char*>(object) - objects - 1]
                             : name == CL_PLATFORM_EXTENSIONS || name == CL_PLATFORM_ICD_SUFFIX_KHR ? ""
                                                                                                    : "OpenCL 3.0";
    if (value != nullptr) {
        std::memcpy(value, text.c_str(), std::min(size, text.size() + 1));
    }
    write(needed, text.size() + 1);
    return CL_SUCCESS;
}

nq_call_handle* open(std::uint64_t device, std::uint64_t version) {
    nq_call_handle* handle = nullptr;
    expect(nq_create_call_handle({device, version}, &handle, nullptr) == 0, "a node cannot be opened");
    return handle;
}

/// A block for a command, and all that it refers to.
class made_block {
public:
    explicit made_block(nq::description const& of) : of_(of), block_(exactly(of.size)) {
        std::memset(block_, 0xA5, of.size);
        for (nq::field const& each : of) {
            if (each.length.rule == nq::length_rule::none) {
                put(each, value_of(each));
            }
        }
        for (nq::field const& each : of) {
            if (each.length.rule != nq::length_rule::none) {
                put(each, reinterpret_cast<std::uintptr_t>(list_of(each)));
            }
        }
        before_.assign(block_, of.size);
    }

    void* get() const { return block_; }

    /// Looks whether nothing but results was written, and no result beside an error.
    void check() const {
        for (nq::field const& each : of_) {
            bool const is_result = each.offset == of_.status || each.offset == of_.result;
            expect(is_result || std::memcmp(block_ + each.offset, before_.data() + each.offset, each.size) == 0,
                   "an input was overwritten");
        }
        for (auto const& [place, content] : inputs_) {
            expect(std::memcmp(place, content.data(), content.size()) == 0, "a list was overwritten");
        }
        if (of_.status != nq::absent && of_.result != nq::absent && nq::read_field(block_, of_.status, 4) != 0) {
            expect(nq::read_field(block_, of_.result) == 0, "there is an object beside an error");
        }
    }

private:
    static constexpr std::size_t longest = 4096;

    char* exactly(std::size_t size) {
        memory_.push_back(std::make_unique<char[]>(size));
        return memory_.back().get();
    }

    void put(nq::field const& to, std::uint64_t value) { std::memcpy(block_ + to.offset, &value, to.size); }

    static std::uint64_t object() {
        std::uint8_t const chosen = input->byte();
        return chosen % 4 == 0 ? 0 : reinterpret_cast<std::uintptr_t>(objects + chosen % sizeof objects);
    }

    static std::uint64_t value_of(nq::field const& of) {
        switch (of.kind) {
        case nq::field_kind::handle:
        case nq::field_kind::callback:
            return object();
        case nq::field_kind::enumeration:
        case nq::field_kind::bits:
            if (std::uint64_t const chosen = input->number(); of.values.count != 0) {
                return chosen < of.values.count ? static_cast<std::uint64_t>(of.values.names[chosen].value) : chosen;
            }
            return input->number();
        default:
            return input->number();
        }
    }

    std::uint64_t count_in(std::uint8_t offset) const {
        for (nq::field const& each : of_) {
            if (each.offset == offset) {
                return nq::read_field(block_, offset, each.size);
            }
        }
        return 0;
    }

    /// A list as long as the field's rule says; null at times, and where it would be too long.
    void* list_of(nq::field const& of) {
        using rule = nq::length_rule;
        std::uint64_t count = 0; // what is not for the bridge to look at has no room at all
        switch (of.length.rule) {
        case rule::constant:
            count = of.length.operands[0];
            break;
        case rule::counted:
            count = count_in(of.length.operands[0]);
            break;
        case rule::zero_terminated:
        case rule::properties:
        case rule::partition:
            count = 1 + 2 * input->below(4);
            break;
        default:
            break;
        }
        bool const is_null = input->below(8) == 0 || count > longest;
        return is_null ? nullptr : fill(of, count);
    }

    void* fill(nq::field const& of, std::size_t count) {
        std::size_t const size = count * of.element_size;
        char* const list = exactly(size);
        bool const holds_pointers = of.kind == nq::field_kind::handle ||
                                    (of.kind == nq::field_kind::text && of.element_size == sizeof(void*)) ||
                                    (of.kind == nq::field_kind::bytes && of.element_size == sizeof(void*));
        if (!holds_pointers) {
            input->fill(list, size);
        }
        for (std::size_t i = 0; holds_pointers && i != count; ++i) {
            std::uint64_t const pointer = object();
            std::memcpy(list + i * sizeof pointer, &pointer, sizeof pointer);
        }
        if (of.length.rule == nq::length_rule::zero_terminated || of.length.rule == nq::length_rule::properties ||
            of.length.rule == nq::length_rule::partition) {
            end(list, count, of.element_size);
        } else if (size == sizeof(void*) * 2 && input->below(2) == 0) { // two binaries that are not wanted
            std::memset(list, 0, size);
        }
        if (of.direction == nq::direction::in && size != 0) {
            inputs_.emplace_back(list, std::string(list, size));
        }
        return list;
    }

    /// Puts a zero to the end of a list, and none where a name is before.
    static void end(char* list, std::size_t count, std::size_t width) {
        for (std::size_t i = 0; i + 1 < count; ++i) {
            list[i * width] = static_cast<char>(list[i * width] | 1);
        }
        std::memset(list + (count - 1) * width, 0, width);
    }

    nq::description const& of_;
    std::vector<std::unique_ptr<char[]>> memory_{};
    char* block_;
    std::string before_{};
    std::vector<std::pair<char*, std::string>> inputs_{};
};

void call() {
    std::uint64_t const device = 1 + input->below(std::size(platform_names));
    std::uint64_t const version = 1 + input->below(versions);
    nq_call_handle* const handle = open(device, version);
    auto const count = static_cast<std::uint32_t>(nq::bridge::commands_of(nq::capability{version}).size());
    std::uint64_t const id = input->number() % (count + 3);
    nq::description const* const known = nq::describe(nq::capability{version}, static_cast<std::uint32_t>(id));
    made_block const block(known != nullptr ? *known : nq::description_of<nq::block::clFinish>);
    std::uint8_t const kind = input->byte();
    bool const is_closed = kind % 32 == 1;
    nq_call_handle* const used = kind % 32 == 2 ? nullptr : handle;
    void* const memory = kind % 32 == 3 ? nullptr : block.get();
    if (is_closed) {
        nq_close_call_handle(handle);
    }
    was_called = false;
    int const result = nq_call_capability(used, static_cast<std::uint32_t>(id), memory, nullptr);
    bool const is_usable = !is_closed && used != nullptr && memory != nullptr;
    expect(result == (!is_usable         ? nq::result::unrecoverable
                      : known == nullptr ? nq::result::invalid_command_id
                                         : 0),
           "the call has another result");
    expect(result == 0 || !was_called, "OpenCL was called");
    if (result == 0) {
        block.check();
    }
    if (!is_closed) {
        nq_close_call_handle(handle);
    }
}

/// Lists into exactly as much room as is said, or into none.
template <class Element, class List>
void list(List of) {
    std::size_t const capacity = input->below(9);
    std::vector<Element> const elements(capacity);
    auto const memory = std::make_unique<Element[]>(capacity);
    std::uint64_t count = 99;
    int const result = of(capacity, input->below(4) == 0 ? nullptr : memory.get(), &count);
    expect(result != 0 || count <= std::size(platform_names), "there are more than there are");
}

void discover() {
    if (input->below(2) == 0) {
        list<nq::device>([](auto... arguments) { return nq_get_root_devices(arguments..., nullptr); });
    }
    std::uint64_t const device = input->number();
    nq::capability const version{input->number()};
    list<nq::capability_node>(
        [=](auto... arguments) { return nq_find_capability_nodes(device, version, arguments..., nullptr); });
    nq_call_handle* handle = nullptr;
    bool const is_node = device - 1 < std::size(platform_names) && static_cast<std::uint64_t>(version) - 1 < versions;
    int const result = nq_create_call_handle({device, static_cast<std::uint64_t>(version)}, &handle, nullptr);
    expect((result == 0) == is_node && (handle != nullptr) == is_node, "what is no node was opened");
    nq_close_call_handle(handle);
}

} // namespace

// No reply is so long that there is memory for it all.
void* operator new(std::size_t size) {
    void* const memory = input != nullptr && size > (1U << 20U) ? nullptr : std::malloc(size);
    return memory != nullptr ? memory : throw std::bad_alloc();
}
void* operator new(std::size_t size, std::nothrow_t const&) noexcept { return std::malloc(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

/// Answers as the input says.
template <class Result, class... Parameters>
Result opencl_function(char const*, Parameters... arguments) {
    was_called = true;
    std::uint8_t const how = input->byte();
    if (how == 0xFF) {
        throw std::bad_alloc();
    }
    if (how == 0xFE) {
        throw 1;
    }
    auto const status = how < 0xC0 ? CL_SUCCESS : static_cast<cl_int>(how) - 0x100;
    answer(arguments...);
    if constexpr (std::is_pointer_v<Result>) {
        auto const last = std::get<sizeof...(arguments) - 1>(std::tuple(arguments...));
        if constexpr (std::is_same_v<decltype(last), cl_int* const>) {
            write(last, status);
        }
        return reinterpret_cast<Result>(input->below(2) == 0 ? nullptr : objects);
    } else {
        return static_cast<Result>(status);
    }
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    nq::bridge::functions& library = nq::bridge::library_functions;
    library = make_functions();
    library.clGetPlatformIDs = list_platforms;
    library.clGetPlatformInfo = tell<cl_platform_id>;
    library.clGetDeviceIDs = list_devices;
    library.clGetDeviceInfo = tell<cl_device_id>;
    for (std::uint64_t device = 1; device <= std::size(platform_names); ++device) {
        nq_close_call_handle(open(device, 1));
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    fuzz::input bytes(data, size);
    input = &bytes;
    while (!bytes.empty()) {
        bytes.below(16) == 0 ? discover() : call();
    }
    input = nullptr;
    return 0;
}
