#include "unit/ownership.hpp"

#include <vorn/mero/opencl.hpp>

#include <cstdlib>
#include <map>

// Ownership, the same for every class of every version: each operation makes exactly the calls that it should.

namespace {

using namespace unit;
using testing::IsEmpty;

// What OpenCL says of a null handle of each kind.
std::map<std::string, common::error_code> const invalid_object = {
    {"Device", common::error_code::invalid_device},
    {"Context", common::error_code::invalid_context},
    {"CommandQueue", common::error_code::invalid_command_queue},
    {"MemObject", common::error_code::invalid_mem_object},
    {"Sampler", common::error_code::invalid_sampler},
    {"Program", common::error_code::invalid_program},
    {"Kernel", common::error_code::invalid_kernel},
    {"Event", common::error_code::invalid_event}};

TEST_P(ownership, adopts_without_a_call_and_releases_once) {
    void* const raw = reference();
    auto object = subject().adopt(handle, raw);
    EXPECT_THAT(news(), IsEmpty());
    EXPECT_EQ(subject().raw(object.get()), raw);
    EXPECT_EQ(subject().handle(object.get()), handle);
    EXPECT_EQ(handle.use_count(), 2);
    object.reset();
    if (subject().counted()) {
        EXPECT_EQ(libnq.calls().at(0).handle, handle.get());
        EXPECT_EQ(libnq.calls().at(0).block.substr(0, sizeof raw), scripted::bytes_of(raw));
    }
    EXPECT_EQ(news(), calls({"Release"}));
    EXPECT_EQ(libnq.references(raw), 0);
    EXPECT_EQ(handle.use_count(), 1);
}

TEST_P(ownership, borrows_by_a_retain) {
    void* const raw = reference();
    for (auto const& borrow : {subject().borrow, subject().create}) {
        if (!borrow) {
            continue;
        }
        {
            auto const object = borrow(handle, raw);
            EXPECT_EQ(news(), calls({"Retain"}));
            EXPECT_EQ(subject().raw(object.get()), raw);
            EXPECT_EQ(subject().handle(object.get()), handle);
        }
        EXPECT_EQ(news(), calls({"Release"}));
        expect_failures(1, as_retain, [&] { borrow(handle, raw); });
        EXPECT_EQ(handle.use_count(), 1);
        EXPECT_EQ(libnq.references(raw), subject().counted() ? 1 : 0);
    }
    drop(raw);
}

TEST_P(ownership, moves_without_a_call) {
    auto const source = object(handle);
    void* const raw = subject().raw(source.get());
    auto const moved = subject().move(source.get());
    EXPECT_THAT(news(), IsEmpty());
    EXPECT_EQ(subject().raw(moved.get()), raw);
    EXPECT_EQ(subject().handle(moved.get()), handle);
    expect_empty(source.get());
    if (subject().hash) {
        EXPECT_EQ(subject().hash(source.get()), 0U);
        EXPECT_FALSE(subject().equal(source.get(), moved.get()));
    }

    auto const target = object(other_handle);
    subject().move_assign(target.get(), moved.get());
    if (subject().counted()) {
        EXPECT_EQ(libnq.calls().at(0).handle, other_handle.get());
    }
    EXPECT_EQ(news(), calls({"Release"}));
    EXPECT_EQ(subject().raw(target.get()), raw);
    EXPECT_EQ(subject().handle(target.get()), handle);
    expect_empty(moved.get());
    EXPECT_EQ(other_handle.use_count(), 1);

    subject().move_assign(target.get(), target.get());
    EXPECT_EQ(news(), calls({"Release"}));
    expect_empty(target.get());
    EXPECT_EQ(handle.use_count(), 1);
}

TEST_P(ownership, an_empty_object_is_released_assigned_and_destroyed_without_a_release) {
    auto const source = object(handle);
    auto const empty = object(handle);
    subject().move(empty.get());
    news();
    subject().release(empty.get());
    subject().move(empty.get());
    EXPECT_THAT(news(), IsEmpty());
    if (subject().counted()) {
        try {
            subject().retain(empty.get());
            ADD_FAILURE() << "nothing thrown";
        } catch (common::opencl_error const& error) {
            EXPECT_EQ(error.code(), invalid_object.at(subject().kind));
        }
        EXPECT_EQ(libnq.calls().at(0).handle, nullptr);
        EXPECT_EQ(libnq.calls().at(0).block.substr(0, sizeof(void*)), std::string(sizeof(void*), '\0'));
        EXPECT_EQ(news(), calls({"Retain"}));
    }
    if (subject().copy_assign) {
        subject().copy_assign(empty.get(), source.get());
        EXPECT_EQ(news(), calls({"Retain"}));
        EXPECT_EQ(subject().raw(empty.get()), subject().raw(source.get()));
    }
}

class identity : public ownership {};

TEST_P(identity, compares_call_handles_then_raw_handles) {
    int const references = subject().counted() ? 2 : 0; // one through each call handle
    void* const raws[] = {libnq.make<void>(references), libnq.make<void>(references)};
    std::vector<any_object> objects;
    for (auto const& used : {std::min(handle, other_handle), std::max(handle, other_handle)}) {
        for (void* const raw : raws) {
            objects.push_back(subject().adopt(used, raw));
        }
    }
    for (std::size_t i = 0; i != objects.size(); ++i) {
        for (std::size_t j = 0; j != objects.size(); ++j) {
            EXPECT_EQ(subject().equal(objects[i].get(), objects[j].get()), i == j);
            EXPECT_EQ(subject().less(objects[i].get(), objects[j].get()), i < j);
        }
        EXPECT_EQ(subject().hash(objects[i].get()),
                  reinterpret_cast<std::uintptr_t>(subject().raw(objects[i].get())) ^
                      reinterpret_cast<std::uintptr_t>(subject().handle(objects[i].get()).get()));
    }
    EXPECT_THAT(news(), IsEmpty());
}

TEST_P(ownership, raw_functions_make_one_call_each) {
    auto const owner = object(handle);
    void const* const asked = owner.get();
    subject().retain(asked);
    EXPECT_EQ(news(), calls({"Retain"}));
    EXPECT_EQ(subject().refcount(asked), subject().counted() ? 2U : 1U);
    if (subject().counted()) {
        names const query(2, "clGet" + subject().kind + "Info");
        EXPECT_EQ(news(), query);
    }
    subject().release(asked);
    EXPECT_EQ(news(), calls({"Release"}));
    expect_failures(1, as_retain, [&] { subject().retain(asked); });
    expect_failures(1, as_release, [&] { subject().release(asked); });
    expect_failures(1, as_retain, [&] { subject().refcount(asked); });
    expect_failures(2, as_retain, [&] { subject().refcount(asked); });
    EXPECT_THAT(news(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(every_class, ownership, testing::ValuesIn(subjects()), name_of_subject);
INSTANTIATE_TEST_SUITE_P(every_class, identity,
                         testing::ValuesIn(subjects_that([](subject const& tested) { return bool(tested.equal); })),
                         name_of_subject);

class vectors : public scripted::fixture {};

TEST_F(vectors, a_growing_one_makes_no_call) {
    using namespace vorn::mero::opencl_1_2;
    nq::call_handle const handle = libnq.open(api::capability);
    std::vector<device> devices;
    for (int i = 0; i != 20; ++i) {
        devices.emplace_back(handle, libnq.make<_nq_cl_device_id>(1), internal::take_ownership{});
    }
    EXPECT_THAT(libnq.names(), IsEmpty());
}

TEST(ownership_DeathTest, a_release_that_fails_in_move_assignment_ends_the_process) {
    using namespace vorn::mero::opencl_1_2;
    auto& libnq = scripted::libnq::instance();
    libnq.reset();
    EXPECT_EXIT(
        {
            std::set_terminate([] { std::_Exit(3); });
            nq::call_handle const handle = libnq.open(api::capability);
            context a(handle, libnq.make<_nq_cl_context>(1), internal::take_ownership{});
            context b(handle, libnq.make<_nq_cl_context>(1), internal::take_ownership{});
            libnq.fail(scripted::layer(-1));
            a = std::move(b);
        },
        testing::ExitedWithCode(3), "");
}

} // namespace
