#pragma once

// What every member withstands: each of its calls failing in every way, each of its allocations failing, both at once,
// and replies of every wrong size. What comes out is exactly the right exception, nothing is lost or released twice,
// and the member works afterwards.

#include "scripted/failures.hpp"
#include "scripted/replies.hpp"
#include "scripted/scripted.hpp"
#include "unit/allocations.hpp"

#include <gtest/gtest.h>
#include <nq/error.hpp>
#include <vorn/mero/common/error.hpp>

#include <iostream>
#include <typeindex>

namespace unit {

namespace common = vorn::mero::common;
using scripted::failing, scripted::failures;

/// The class and the message of what some work throws.
template <class Work>
std::pair<std::type_index, std::string> thrown_by(Work const& work) {
    try {
        work();
    } catch (std::exception const& thrown) {
        return {typeid(thrown), thrown.what()};
    }
    return {typeid(void), "nothing was thrown"};
}

/// Counts what the program's sweeps did, and says so at its end.
struct tally : testing::Environment {
    void TearDown() override {
        std::cout << "swept: " << calls << " failing calls, " << allocations << " failing allocations, " << both
                  << " of both, " << replies << " replies of other sizes\n";
    }
    std::size_t calls = 0;
    std::size_t allocations = 0;
    std::size_t both = 0;
    std::size_t replies = 0;
};
inline tally* const swept = dynamic_cast<tally*>(testing::AddGlobalTestEnvironment(new tally));

/// Starts every test with a fresh libnq, and ends it by asking that no reference and no call handle is left. That is
/// asked once the members of the test's own fixture are gone.
struct fixture : testing::Test {
    fixture() { libnq.reset(); }
    fixture(fixture const&) = delete;
    fixture& operator=(fixture const&) = delete;
    ~fixture() override { EXPECT_EQ(libnq.leftovers(), ""); }

    /// Expects some work to withstand everything on its way. It may leave what it did before behind, and succeeds.
    template <class Work>
    void withstands(Work const& work) {
        auto const made = calls_of(work);
        ASSERT_FALSE(made.empty());
        until_memory_suffices(swept->allocations, typeid(void), work);
        std::map<std::string, unsigned> seen;
        for (scripted::call const& call : made) {
            unsigned const n = ++seen[call.name];
            for (failing const& failure : failures) {
                // what a destructor cannot throw is logged; without a status only the call layer can fail
                if (!call.name.starts_with("clRelease") && (failure.how.status == 0 || call.has_status)) {
                    SCOPED_TRACE(call.name + ", number " + std::to_string(n));
                    until_memory_suffices(swept->both, failure.thrown, [&] {
                        libnq.failures.clear();
                        libnq.forget_calls();
                        libnq.fail(failure.how, n, call.name);
                        work();
                    });
                    ++swept->calls;
                    expect_releases_after(call.name, n);
                }
            }
        }
        EXPECT_EQ(calls_of(work).size(), made.size());
    }

    /// Expects a read to make the right of every size that its query may report. `Block` and the name are the query's,
    /// the reply is a good one.
    template <class Block, class Read>
    void withstands_sizes(std::uint32_t name, std::string const& reply, Read const& read) {
        scripted::reading const what = scripted::reading_of<decltype(read())>(reply.size());
        std::size_t const n = reply.size();
        std::size_t const sizes[][2] = {{0, 0},         {1, 1},         {n - 1, n - 1}, {n + 1, n + 1},
                                        {2 * n, 2 * n}, {0, n},         {0, 1},         {n, 0},
                                        {n, n - 1},     {n, n + 1},     {n + 1, n},     {unwritten, unwritten},
                                        {unwritten, n}, {n, unwritten}, {0, fills},     {huge, huge}};
        for (auto const& [first, second] : sizes) {
            SCOPED_TRACE("sizes " + std::to_string(first) + ", " + std::to_string(second));
            withstands_size<Block>(name, reply, what, {first, second}, read);
            ++swept->replies;
        }
    }

    scripted::libnq& libnq = scripted::libnq::instance();

private:
    little_memory const memory;
    static constexpr std::size_t unwritten = ~std::size_t{0};
    static constexpr std::size_t fills = unwritten - 1; // whatever room is offered
    static constexpr std::size_t huge = std::size_t{1} << 40;

    /// Expects that nothing but releases was called after the n-th call of an entry point, which failed.
    void expect_releases_after(std::string const& name, unsigned n) {
        for (scripted::call const& call : libnq.calls) {
            EXPECT_TRUE(n != 0 || call.name.starts_with("clRelease")) << call.name;
            n -= n != 0 && call.name == name ? 1U : 0U;
        }
    }

    /// The references that are held, and how many call handles and faults there are.
    std::vector<std::pair<void const*, std::size_t>> held() const {
        std::vector<std::pair<void const*, std::size_t>> all{{nullptr, libnq.open_handles.size()},
                                                             {nullptr, libnq.faults.size()}};
        for (auto const& [raw, count] : libnq.references) {
            if (count != 0) {
                all.emplace_back(raw, count);
            }
        }
        return all;
    }

    template <class Work>
    std::vector<scripted::call> calls_of(Work const& work) {
        libnq.forget_calls();
        if constexpr (std::is_void_v<decltype(work())>) {
            work();
            return libnq.calls;
        } else {
            [[maybe_unused]] auto const result = work();
            return libnq.calls; // without the releases of the result
        }
    }

    /// Runs some work with its first allocation failing, then with its second, until none fails: then it throws what is
    /// expected. What is held stays the same.
    template <class Work>
    void until_memory_suffices(std::size_t& count, std::type_index expected, Work const& work) {
        auto const before = held();
        std::type_index thrown = typeid(std::bad_alloc);
        for (std::size_t n = 1; thrown == typeid(std::bad_alloc) && n != 1000; ++n, ++count) {
            thrown = thrown_by([&] { allocations_of(work, n); }).first;
            ASSERT_EQ(held(), before) << "allocation " << n << '\n' << libnq.leftovers();
        }
        --count; // the last one did not fail
        libnq.failures.clear();
        EXPECT_EQ(thrown, expected);
    }

    template <class Block, class Read>
    void withstands_size(std::uint32_t name, std::string const& reply, scripted::reading const& what,
                         std::array<std::size_t, 2> sizes, Read const& read) {
        std::vector<scripted::answered_query> asked;
        auto const answers = libnq.answers;
        libnq.on<Block>([&](Block& block) {
            if (block.param_name != name) {
                return false;
            }
            std::size_t const size = sizes[asked.empty() ? 0 : 1];
            for (std::size_t i = 0; i != block.param_value_size; ++i) { // all of the room, in good elements
                static_cast<char*>(block.param_value)[i] = reply[i % reply.size()];
            }
            *block.param_value_size_ret = size == fills       ? block.param_value_size
                                          : size == unwritten ? *block.param_value_size_ret
                                                              : size;
            asked.push_back({block.param_value_size, *block.param_value_size_ret});
            return true;
        });
        auto const before = held();
        std::type_index const thrown = thrown_by(read).first;
        EXPECT_EQ(held(), before) << libnq.leftovers();
        auto const expected = scripted::outcome_of(what, asked);
        EXPECT_EQ(thrown, expected == scripted::outcome::value     ? typeid(void)
                          : expected == scripted::outcome::refused ? typeid(common::bad_implementation)
                                                                   : typeid(std::bad_alloc)); // there is no such memory
        libnq.answers = answers;
    }
};

} // namespace unit
