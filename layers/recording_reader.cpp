#include "recording.hpp"

#include <zstd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <set>
#include <stdexcept>

namespace nq::recording {
namespace {

[[noreturn]] void give_up(std::string const& what) { throw std::runtime_error("the recording " + what); }

[[noreturn]] void cut_off() { give_up("was cut off; record it again, and let the program come to its end"); }

void expect(bool holds, char const* what) {
    if (!holds) {
        give_up(std::string("is damaged: ") + what + "; copy it or record it again");
    }
}

// Never asks for more memory than there are bytes.
std::vector<std::byte> read_exactly(source& from, std::uint64_t size) {
    constexpr std::uint64_t step = std::uint64_t{1} << 20U;
    std::vector<std::byte> bytes;
    while (bytes.size() != size) {
        std::size_t const before = bytes.size();
        bytes.resize(before + std::min(size - before, std::max<std::uint64_t>(before, step)));
        if (from.read(std::span(bytes).subspan(before)) != bytes.size() - before) {
            cut_off();
        }
    }
    return bytes;
}

template <class Entry>
Entry take(memory& body) {
    Entry made;
    expect(body.size() >= sizeof made, "an entry is too short");
    std::memcpy(&made, body.data(), sizeof made);
    body = body.subspan(sizeof made);
    return made;
}

std::string take_text(memory& body, std::size_t size) {
    expect(body.size() >= size, "a name is too short");
    std::string text(reinterpret_cast<char const*>(body.data()), size);
    body = body.subspan(size);
    return text;
}

field const* field_at(description const& about, std::uint64_t offset) {
    auto const* const found =
        std::find_if(about.begin(), about.end(), [offset](field const& each) { return each.offset == offset; });
    return found != about.end() ? found : nullptr;
}

class reader {
public:
    explicit reader(source& from) : from_(from) {}

    session read() {
        for (std::uint64_t entries = 0;; ++entries) {
            auto const head_bytes = read_exactly(from_, sizeof(entry_head));
            memory head_left = head_bytes;
            auto const head = take<entry_head>(head_left);
            expect(head.kind >= entry_kind::memory && head.kind <= entry_kind::end, "an entry is of no known kind");
            std::vector<std::byte> body = read_exactly(from_, head.size);
            memory left = body;
            if (head.kind == entry_kind::end) {
                expect(take<end_entry>(left).entries == entries, "entries are missing");
                std::byte beyond{};
                expect(from_.read({&beyond, 1}) == 0, "there is something after its end");
                return finish();
            }
            read(head.kind, left, body);
        }
    }

private:
    void read(entry_kind kind, memory left, std::vector<std::byte>& body) {
        if (kind == entry_kind::memory) {
            made_.memories.push_back(std::move(body));
            return;
        }
        if (kind == entry_kind::handle) {
            auto const entry = take<handle_entry>(left);
            std::string platform = take_text(left, entry.platform_size);
            made_.handles.push_back({entry, std::move(platform), take_text(left, entry.device_size)});
        } else if (kind == entry_kind::call) {
            read_one_call(left);
            made_.bodies.push_back(std::move(body));
        } else if (kind == entry_kind::contents) {
            made_.contents.push_back(take<contents_entry>(left));
            expect(made_.contents.back().memory < made_.memories.size(), "memory is missing");
            add(made_.contents.back().order, kind, made_.contents.size());
        } else {
            made_.shared.push_back(take<shared_entry>(left));
            expect(made_.shared.back().memory < made_.memories.size(), "memory is missing");
            add(made_.shared.back().order, kind, made_.shared.size());
        }
        expect(left.empty(), "an entry is too long");
    }

    void add(std::uint64_t order, entry_kind kind, std::size_t count) {
        made_.events.push_back({order, kind, count - 1});
    }

    void read_one_call(memory& left) {
        read_call call;
        call.entry = take<call_entry>(left);
        expect(call.entry.handle < made_.handles.size(), "a call handle is missing");
        call.about = describe(capability{made_.handles[call.entry.handle].entry.version}, call.entry.id);
        expect(call.about != nullptr, "there is no such command");
        expect(left.size() >= call.about->size, "a block is too short");
        call.block = left.first(call.about->size);
        left = left.subspan(call.about->size);
        expect(call.entry.segments <= left.size() / sizeof(segment), "a call is too short");
        for (std::uint32_t i = 0; i < call.entry.segments; ++i) {
            call.segments.push_back(take<segment>(left));
            segment const& each = call.segments.back();
            field const* const of = field_at(*call.about, each.offset);
            expect(of != nullptr && of->size == sizeof(void*), "a segment is of no pointer");
            expect(each.memory < made_.memories.size(), "memory is missing");
        }
        made_.calls.push_back(std::move(call));
        add(made_.calls.back().entry.order, entry_kind::call, made_.calls.size());
    }

    session finish() {
        std::set<std::uint64_t> orders;
        std::sort(made_.events.begin(), made_.events.end(),
                  [](event const& one, event const& other) { return one.order < other.order; });
        for (event const& each : made_.events) {
            expect(orders.insert(each.order).second, "two entries have one number");
        }
        for (contents_entry const& each : made_.contents) {
            auto const call = std::lower_bound(made_.events.begin(), made_.events.end(), each.call,
                                               [](event const& one, std::uint64_t order) { return one.order < order; });
            expect(call != made_.events.end() && call->order == each.call && call->kind == entry_kind::call &&
                       each.call < each.order,
                   "contents are of no call");
            field const* const of = field_at(*made_.calls[call->index].about, each.offset);
            expect(of != nullptr && of->kind == field_kind::bytes && of->direction == direction::out,
                   "contents are of no memory");
        }
        return std::move(made_);
    }

    source& from_;
    session made_{};
};

class file_source : public source {
public:
    explicit file_source(std::FILE* file) : file_(file) {
        file_head head;
        if (file_ == nullptr || std::fread(&head, 1, sizeof head, file_) != sizeof head ||
            head.magic != file_head::right_magic) {
            std::string const why = file_ == nullptr || std::ferror(file_) != 0 ? std::strerror(errno)
                                                                                : "vorn-mero record did not write it";
            close();
            throw std::runtime_error("it cannot be read: " + why);
        }
        if (head.version != file_head::right_version) {
            close();
            give_up("is of version " + std::to_string(head.version) + ", and this program reads version " +
                    std::to_string(file_head::right_version) + "; replay it with the vorn-mero that recorded it");
        }
    }
    file_source(file_source const&) = delete;
    file_source& operator=(file_source const&) = delete;
    ~file_source() override { close(); }

    std::size_t read(std::span<std::byte> into) override {
        ZSTD_outBuffer out{into.data(), into.size(), 0};
        while (out.pos != out.size) {
            if (in_.pos == in_.size) {
                in_ = {compressed_.data(), std::fread(compressed_.data(), 1, compressed_.size(), file_), 0};
            }
            bool const at_end = in_.size == 0;
            std::size_t const before = out.pos;
            std::size_t const left = ZSTD_decompressStream(stream_, &out, &in_);
            expect(ZSTD_isError(left) == 0, "its bytes are not as they were written");
            if (at_end && out.pos == before) {
                if (left_ != 0) {
                    cut_off();
                }
                break;
            }
            left_ = at_end ? left_ : left;
        }
        return out.pos;
    }

private:
    void close() {
        ZSTD_freeDCtx(stream_);
        if (file_ != nullptr) {
            std::fclose(file_);
        }
    }

    std::FILE* file_;
    ZSTD_DCtx* stream_ = ZSTD_createDCtx();
    std::vector<char> compressed_ = std::vector<char>(ZSTD_DStreamInSize());
    ZSTD_inBuffer in_{nullptr, 0, 0};
    std::size_t left_ = 1; // 0 once the stream has come to its end
};

} // namespace

segment const* read_call::find(std::size_t offset, std::uint32_t item) const {
    for (segment const& each : segments) {
        if (each.offset == offset && each.item == item) {
            return &each;
        }
    }
    return nullptr;
}

session read_entries(source& from) { return reader(from).read(); }

session read_file(std::FILE* file) {
    file_source from(file);
    return read_entries(from);
}

session read_file(std::string const& path) {
    try {
        return read_file(std::fopen(path.c_str(), "rbe"));
    } catch (std::runtime_error const& failure) {
        throw std::runtime_error(path + ": " + failure.what());
    }
}

} // namespace nq::recording
