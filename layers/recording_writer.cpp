#include "recording.hpp"

#include <zstd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <map>
#include <string_view>
#include <tuple>
#include <utility>

namespace nq::recording {
namespace {

// Two hashes of 64 bits and the size: what is equal in all is the same memory.
using fingerprint = std::tuple<std::size_t, std::size_t, std::uint64_t>;

fingerprint take(memory bytes) {
    constexpr std::uint64_t prime = 0x9E3779B97F4A7C15U;
    std::uint64_t mixed = bytes.size() + 1;
    for (std::size_t at = 0; at < bytes.size(); at += sizeof mixed) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data() + at, std::min(sizeof word, bytes.size() - at));
        mixed = (mixed ^ word) * prime;
        mixed ^= mixed >> 29U;
    }
    std::string_view const text(reinterpret_cast<char const*>(bytes.data()), bytes.size());
    return {bytes.size(), std::hash<std::string_view>{}(text), mixed};
}

} // namespace

struct writer::state {
    std::string path;
    std::FILE* file = nullptr;
    ZSTD_CCtx* stream = nullptr;
    std::string failure;
    std::vector<char> compressed = std::vector<char>(ZSTD_CStreamOutSize());
    std::map<fingerprint, std::uint64_t> known;
    std::uint64_t entries = 0;
};

writer::writer() : state_(std::make_unique<state>()) {}

writer::~writer() {
    ZSTD_freeCCtx(state_->stream);
    if (state_->file != nullptr) {
        std::fclose(state_->file);
    }
}

std::string writer::open(std::string const& path) {
    file_head const head;
    state_->path = path;
    state_->file = std::fopen(path.c_str(), "wbe");
    if (state_->file == nullptr || std::fwrite(&head, sizeof head, 1, state_->file) != 1 ||
        std::fflush(state_->file) != 0) {
        return "cannot write " + path + ": " + std::strerror(errno);
    }
    state_->stream = ZSTD_createCCtx();
    ZSTD_CCtx_setParameter(state_->stream, ZSTD_c_compressionLevel, 1);
    ZSTD_CCtx_setParameter(state_->stream, ZSTD_c_checksumFlag, 1);
    return state_->stream != nullptr ? "" : "cannot write " + path + ": out of memory";
}

std::uint64_t writer::keep(memory bytes) {
    auto const [found, is_new] = state_->known.try_emplace(take(bytes), state_->known.size());
    if (is_new) {
        write_entry(entry_kind::memory, bytes, {});
    }
    return found->second;
}

void writer::write_entry(entry_kind kind, memory body, memory tail) {
    entry_head const head{kind, 0, body.size() + tail.size()};
    ++state_->entries;
    put(std::as_bytes(std::span(&head, 1)), false);
    put(body, false);
    put(tail, false);
}

void writer::put(memory bytes, bool last) {
    ZSTD_inBuffer in{bytes.data(), bytes.size(), 0};
    for (bool more = true; more && state_->file != nullptr && state_->failure.empty();) {
        ZSTD_outBuffer out{state_->compressed.data(), state_->compressed.size(), 0};
        std::size_t const left = ZSTD_compressStream2(state_->stream, &out, &in, last ? ZSTD_e_end : ZSTD_e_continue);
        if (ZSTD_isError(left) != 0) {
            state_->failure = "cannot compress " + state_->path + ": " + ZSTD_getErrorName(left);
        } else if (std::fwrite(out.dst, 1, out.pos, state_->file) != out.pos) {
            state_->failure = "cannot write " + state_->path + ": " + std::strerror(errno);
        }
        more = last ? left != 0 : in.pos != in.size;
    }
}

std::string writer::close() {
    write(entry_kind::end, end_entry{state_->entries});
    put({}, true);
    std::FILE* const file = std::exchange(state_->file, nullptr);
    if (std::fclose(file) != 0 && state_->failure.empty()) {
        state_->failure = "cannot write " + state_->path + ": " + std::strerror(errno);
    }
    return state_->failure;
}

} // namespace nq::recording
