#pragma once

// What the tests of commands share: a command is enqueued in every way, however it came about.

#include "unit/allocations.hpp"
#include "unit/members.hpp"

namespace unit {
inline constexpr word large = 0x123456789A;
inline constexpr word flags = 0x8000000000000005;
using array3 = std::array<std::size_t, 3>;
inline constexpr array3 first{1, 2, large};
inline constexpr array3 second{4, 5, 6};
inline constexpr array3 third{7, 8, 9};

/// Where a command's block has what the queue gives and takes.
struct places {
    std::size_t wait_list, event, status, num_events;
    std::size_t queue = 0;
    std::size_t mapped = nowhere;
};

/// A pointer to some words, which lie in the command itself or in memory that it owns.
struct own_words {
    std::size_t offset;
    std::vector<word> content;
    bool inside = true;
};

inline own_words own(std::size_t offset, array3 const& content) { return {offset, {content.begin(), content.end()}}; }

/// What a command is to send, however it came about.
struct expected {
    places at;
    std::vector<field> fields;
    std::vector<own_words> arrays{};
};

template <class Api>
class commands : public members<Api> {
protected:
    template <class Block>
    void answer_with(places const& at, std::int32_t status) {
        this->libnq.template on<Block>([=, this](Block& block) {
            results where{.status = at.status, .object = at.mapped};
            answer(&block, where, status, given);
            if (word_at(std::string(reinterpret_cast<char const*>(&block), sizeof block), at.event) != 0) {
                event = this->libnq.template make<_nq_cl_event>(status == 0 ? 1 : 0);
                answer(&block, {.through = at.event}, status, event);
            }
        });
    }

    template <class Command>
    void expect_sent(expected const& what, Command const& sender, _nq_cl_event* const* wait_list, unsigned int count,
                     bool with_event) {
        ASSERT_EQ(this->libnq.calls().size(), 1U);
        auto const call = this->libnq.calls().front();
        EXPECT_EQ(call.handle, handle_of(this->objects.queue));
        expect_fields(call, what.fields);
        expect_fields(call, {u8(what.at.queue, this->objects.queue), u8(what.at.wait_list, wait_list),
                             u4(what.at.num_events, count)});
        EXPECT_EQ(word_at(call.block, what.at.event) != 0, with_event);
        for (own_words const& array : what.arrays) {
            word const place = word_at(call.block, array.offset);
            ASSERT_NE(place, 0U) << "at offset " << array.offset;
            bool const inside = word_of(&sender) <= place && place < word_of(&sender) + sizeof sender;
            EXPECT_EQ(inside, array.inside) << "at offset " << array.offset;
            EXPECT_EQ(std::memcmp(reinterpret_cast<void*>(place), array.content.data(), array.content.size() * 8), 0)
                << "at offset " << array.offset;
        }
        this->forget();
    }

    /// Enqueues a command in every way; each is one call and allocates nothing.
    template <class Block, class Command>
    void enqueue(expected const& what, Command const& sender) {
        auto& queue = this->objects.queue;
        std::array const events{owner_access::raw(this->objects.event), owner_access::raw(this->objects.event)};
        answer_with<Block>(what.at, 0);
        this->forget();
        {
            allocation_watch const watch;
            queue.enqueue_command_without_event(sender);
            queue.enqueue_command_without_event(sender, 2, events.data());
            auto const made = queue.enqueue_command(sender);
            EXPECT_EQ(watch.count(), 0U);
        }
        this->forget();
        queue.enqueue_command_without_event(sender);
        expect_sent(what, sender, nullptr, 0, false);
        queue.enqueue_command_without_event(sender, 2, events.data());
        expect_sent(what, sender, events.data(), 2, false);
        {
            auto const made = queue.enqueue_command(sender);
            expect_sent(what, sender, nullptr, 0, true);
            EXPECT_EQ(word_of(made), word_of(event));
            EXPECT_EQ(handle_of(made), handle_of(queue));
        }
        EXPECT_EQ(this->libnq.names(), calls{"clReleaseEvent"});
        this->forget();
        queue.enqueue_command(sender, 2, events.data());
        EXPECT_EQ(this->libnq.names(), (calls{std::string(scripted::name_of<Block>()), "clReleaseEvent"}));
        // a list goes as it is, also where it does not match its count
        this->forget();
        queue.enqueue_command_without_event(sender, 0, events.data());
        expect_sent(what, sender, events.data(), 0, false);

        answer_with<Block>(what.at, -5);
        EXPECT_THROW(queue.enqueue_command(sender), common::out_of_resources);
        this->libnq.template fail<Block>(scripted::layer(1));
        EXPECT_THROW(queue.enqueue_command_without_event(sender), nq::unknown_error);
        EXPECT_EQ(this->libnq.names(), calls(2, std::string(scripted::name_of<Block>())));
    }

    /// The same of what `make` makes, of what is copied and moved from there, each outliving its source.
    template <class Block, class Make>
    void sends(expected const& what, Make make) {
        SCOPED_TRACE(std::string(scripted::name_of<Block>()));
        using made = decltype(make());
        made const sender = make();
        enqueue<Block>(what, sender);
        auto source = std::make_unique<made>(make());
        made const moved(std::move(*source));
        source.reset();
        enqueue<Block>(what, moved);
        if constexpr (std::is_copy_constructible_v<made>) {
            source = std::make_unique<made>(sender);
            made const copied(*source);
            source.reset();
            enqueue<Block>(what, copied);
        }
        EXPECT_TRUE((std::is_move_assignable_v<made> && std::is_base_of_v<typename Api::command, made>));
        EXPECT_EQ(std::is_copy_assignable_v<made>, std::is_copy_constructible_v<made>);
    }

    char memory[64]{};
    void* given = memory; // what OpenCL answers to a map
    _nq_cl_event* event = nullptr;
};

} // namespace unit
