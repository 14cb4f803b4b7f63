// Recordings that are damaged in any way, on a libnq that looks at all that a block refers to. What the reader lets
// pass is replayed: no call may refer to memory that is not there, and no comparison may read beyond it. Entries are
// made of the input so that most of them are right but for some numbers; or the input is the file.

#include "command/player.hpp"
#include "fuzz/input.hpp"
#include "layers/recording.hpp"

#include <nq/describe.hpp>
#include <nq/nq.hpp>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>
#include <vector>

namespace {

using namespace nq::recording;

constexpr std::size_t most_memory = 1U << 16U;
constexpr std::uint32_t element_size = 4; // of all images

fuzz::input* input = nullptr;
std::vector<std::unique_ptr<char[]>>* made = nullptr; // memory that calls have returned
std::uint64_t objects = 0;                            // that calls have made

std::vector<std::byte> stream;

void append(void const* bytes, std::size_t size) {
    auto const* const start = static_cast<std::byte const*>(bytes);
    stream.insert(stream.end(), start, start + size);
}

// Once in a while another number.
std::uint64_t perhaps(std::uint64_t right) { return input->byte() > 0xFA ? input->number() : right; }

void begin_entry(entry_kind kind, std::size_t size) {
    entry_head const head{input->byte() == 0xFF ? entry_kind{input->byte()} : kind, 0, perhaps(size)};
    append(&head, sizeof head);
}

template <class Entry>
void write(entry_kind kind, Entry const& entry, std::vector<std::byte> const& tail = {}) {
    begin_entry(kind, sizeof entry + tail.size());
    append(&entry, sizeof entry);
    append(tail.data(), tail.size());
}

/// Makes entries until the input is at its end.
class entries {
public:
    void make() {
        write(entry_kind::handle, handle_entry{version_, 1, 2, 0, 0});
        std::uint64_t count = 1;
        for (; !input->empty(); ++count) {
            switch (input->below(8)) {
            case 0:
                memory(input->below(64));
                break;
            case 1:
                write(entry_kind::contents, contents_entry{order_++, perhaps(last_), last_offset_, any_memory()});
                break;
            case 2:
                write(entry_kind::shared, shared_entry{order_++, any_word(), input->below(2), any_memory()});
                break;
            default:
                call();
                count += memories_ - counted_;
                break;
            }
            counted_ = memories_;
        }
        write(entry_kind::end, end_entry{perhaps(count)});
    }

private:
    std::uint64_t any_memory() { return memories_ == 0 ? 0 : perhaps(input->byte() % memories_); }
    // Small numbers are sizes, counts, objects and addresses all at once, so that they meet.
    static std::uint64_t any_word() { return perhaps(input->byte() % 32); }

    std::uint64_t memory(std::size_t size) {
        begin_entry(entry_kind::memory, size);
        bool const ends = input->below(2) == 0; // as texts and properties do
        for (std::size_t at = 0; at < size; at += sizeof(std::uint64_t)) {
            std::uint64_t const word = ends && at + sizeof word >= size ? 0 : any_word();
            append(&word, std::min(sizeof word, size - at));
        }
        return memories_++;
    }

    void call() {
        std::uint32_t const id = 1 + input->byte() % 102;
        nq::description const* const about = nq::describe(nq::capability{version_}, id);
        if (about == nullptr) {
            return write(entry_kind::call, call_entry{.order = order_++, .id = id});
        }
        std::vector<std::byte> block(about->size);
        for (nq::field const& each : *about) {
            bool const succeeds = each.offset == about->status && input->byte() < 0xF0;
            std::uint64_t const word = succeeds ? 0 : any_word();
            std::memcpy(block.data() + each.offset, &word, each.size);
        }
        std::vector<segment> segments;
        for (nq::field const& each : *about) {
            std::uint64_t const pointer = each.size == 8 ? nq::read_field(block.data(), each.offset) : 0;
            if (each.length.rule == nq::length_rule::none || pointer == 0 || input->byte() > 0xF0) {
                continue;
            }
            segments.push_back({static_cast<std::uint32_t>(perhaps(each.offset)),
                                static_cast<std::uint32_t>(perhaps(0)), perhaps(memory(size_of(*about, each, block)))});
            for (std::uint32_t item = 1; each.element_size == 8 && item < 3; ++item) {
                segments.push_back({each.offset, item, any_memory()});
            }
            last_offset_ = each.kind == nq::field_kind::bytes ? each.offset : last_offset_;
        }
        last_ = order_;
        std::size_t const size = block.size();
        block.resize(size + segments.size() * sizeof(segment));
        if (!segments.empty()) {
            std::memcpy(block.data() + size, segments.data(), block.size() - size);
        }
        call_entry const entry{.order = perhaps(order_++),
                               .id = id,
                               .pixel_size = static_cast<std::uint32_t>(perhaps(element_size)),
                               .segments = static_cast<std::uint32_t>(perhaps(segments.size()))};
        write(entry_kind::call, entry, block);
    }

    // As the description has it, as far as that can be told here.
    static std::size_t size_of(nq::description const& about, nq::field const& of, std::vector<std::byte> const& block) {
        std::size_t count = input->below(8);
        if (of.length.rule == nq::length_rule::constant) {
            count = of.length.operands[0];
        } else if (of.length.rule == nq::length_rule::counted) {
            count = 0;
            for (nq::field const& each : about) {
                count =
                    each.offset == of.length.operands[0] ? nq::read_field(block.data(), each.offset, each.size) : count;
            }
        }
        return count * std::max<std::size_t>(of.element_size, 1) % most_memory;
    }

    std::uint64_t version_ = 1 + input->below(6);
    std::uint64_t order_ = 1;
    std::uint64_t last_ = 0;
    std::uint64_t last_offset_ = 0;
    std::uint64_t memories_ = 0;
    std::uint64_t counted_ = 0;
};

class all_bytes : public source {
public:
    explicit all_bytes(std::vector<std::byte> const& of) : left_(of) {}
    std::size_t read(std::span<std::byte> into) override {
        std::size_t const taken = std::min(into.size(), left_.size());
        if (taken != 0) {
            std::memcpy(into.data(), left_.data(), taken);
        }
        left_ = left_.subspan(taken);
        return taken;
    }

private:
    nq::recording::memory left_;
};

/// Reads each byte, so that AddressSanitizer sees what is not there.
void look_at(void const* from, std::size_t size) {
    unsigned char volatile seen = 0;
    for (std::size_t i = 0; i < size; ++i) {
        seen = static_cast<unsigned char const*>(from)[i];
    }
    static_cast<void>(seen);
}

char* make(std::size_t size) {
    made->push_back(std::make_unique<char[]>(size));
    std::memset(made->back().get(), static_cast<int>(input->byte()), size);
    return made->back().get();
}

/// A call that an implementation would refuse.
bool is_refused(nq::description const& about, void const* block) {
    for (nq::field const& each : about) {
        bool const has_room = each.kind == nq::field_kind::bytes && each.direction == nq::direction::out;
        auto const size = nq::extent_of(about, each, block, element_size);
        if (has_room && size.value_or(0) > most_memory) {
            return true;
        }
    }
    return false;
}

void perform(nq::description const& about, void* block) {
    for (nq::field const& each : about) {
        auto* const pointer = const_cast<void*>(each.size == 8 ? nq::read_pointer(block, each.offset) : nullptr);
        if (each.length.rule == nq::length_rule::none || each.offset == about.result || pointer == nullptr) {
            continue;
        }
        std::size_t const size = nq::extent_of(about, each, block, element_size).value_or(0);
        if (each.direction == nq::direction::in) {
            look_at(pointer, size);
        } else if (each.kind == nq::field_kind::handle) {
            for (std::size_t i = 0; i < size / 8; ++i) {
                static_cast<std::uint64_t*>(pointer)[i] = ++objects;
            }
        } else {
            std::memset(pointer, each.kind == nq::field_kind::size ? 0 : input->byte(), size);
        }
    }
    for (nq::field const& each : about) {
        if (each.offset == about.result) {
            std::size_t const size = nq::extent_of(about, each, block, element_size).value_or(0);
            std::uint64_t const value =
                each.kind == nq::field_kind::bytes ? reinterpret_cast<std::uintptr_t>(make(size + 1)) : ++objects;
            std::memcpy(static_cast<char*>(block) + each.offset, &value, sizeof value);
        }
    }
}

} // namespace

// No recording is so large that there is memory for what it says.
void* operator new(std::size_t size) {
    void* const memory = input != nullptr && size > (1U << 22U) ? nullptr : std::malloc(size);
    return memory != nullptr ? memory : throw std::bad_alloc();
}
void* operator new(std::size_t size, std::nothrow_t const&) noexcept { return std::malloc(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

extern "C" {

std::uint64_t nq_version() { return nq::version; }

int nq_get_root_devices(std::uint64_t capacity, nq::device* devices, std::uint64_t* count, void*) {
    *count = 1;
    std::fill_n(devices, std::min<std::uint64_t>(capacity, 1), 7);
    return nq::result::success;
}

int nq_find_capability_nodes(nq::device device, nq::capability capability, std::uint64_t capacity,
                             nq::capability_node* nodes, std::uint64_t* count, void*) {
    *count = 1;
    std::fill_n(nodes, std::min<std::uint64_t>(capacity, 1),
                nq::capability_node{device, static_cast<std::uint64_t>(capability)});
    return nq::result::success;
}

int nq_create_call_handle(nq::capability_node node, nq_call_handle** handle, void*) {
    std::memcpy(static_cast<void*>(handle), &node.second, sizeof *handle);
    return nq::result::success;
}

void nq_close_call_handle(nq_call_handle*) {}

int nq_call_capability(nq_call_handle* handle, std::uint32_t id, void* block, void*) {
    std::uint64_t version = 0;
    std::memcpy(&version, static_cast<void*>(&handle), sizeof version);
    nq::description const* const about = nq::describe(nq::capability{version}, id);
    fuzz::expect(about != nullptr, "there is no such command");
    if (about == &nq::description_of<nq::block::clGetImageInfo>) {
        auto const* const asked = static_cast<nq::block::clGetImageInfo*>(block);
        std::memcpy(asked->param_value, &element_size, std::min<std::size_t>(asked->param_value_size, 4));
        return nq::result::success;
    }
    bool const fails = is_refused(*about, block) || input->byte() >= 0xF0;
    if (!fails) {
        perform(*about, block);
    }
    if (about->status != nq::absent) {
        std::int32_t const status = fails ? -5 : 0;
        std::memcpy(static_cast<char*>(block) + about->status, &status, sizeof status);
    }
    return nq::result::success;
}

int LLVMFuzzerInitialize(int*, char***) { return 0; }

int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    fuzz::input bytes(data, size);
    std::vector<std::unique_ptr<char[]>> memory;
    input = &bytes;
    made = &memory;
    objects = 1000;
    stream.clear();
    try {
        session read;
        if (bytes.byte() % 8 == 0 && size > 1) {
            std::string file = bytes.rest();
            read = nq::recording::read_file(fmemopen(file.data(), file.size(), "r"));
        } else {
            entries().make();
            all_bytes from(stream);
            read = read_entries(from);
        }
        fuzz::input answers(data, size);
        input = &answers;
        nq::command::machine machine;
        nq::command::player(read, machine, {}).run([](std::string const&) {});
    } catch (std::runtime_error const& failure) {
        fuzz::expect(*failure.what() != '\0', "a recording is refused without a reason");
    } catch (std::bad_alloc const&) { // NOLINT(bugprone-empty-catch)
    }
    input = nullptr;
    return 0;
}

} // extern "C"
