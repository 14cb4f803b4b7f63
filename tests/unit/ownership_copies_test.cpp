#include "unit/ownership.hpp"

#include <vorn/mero/internal/logger.hpp>
#include <vorn/mero/opencl.hpp>

#include <spdlog/sinks/ostream_sink.h>
#include <sstream>

// Copies of the classes that have them, and the destructors of those that release.

namespace {

using namespace unit;
using testing::ElementsAre;
using testing::IsEmpty;

class copying : public ownership {};
class retaining_copies : public ownership {};
class destructors : public ownership {};

bool is_copyable(subject const& tested) { return bool(tested.copy_assign); }
bool is_counted(subject const& tested) { return tested.counted(); }
bool is_copied_by_retain(subject const& tested) { return is_copyable(tested) && is_counted(tested); }

INSTANTIATE_TEST_SUITE_P(every_class, copying, testing::ValuesIn(subjects_that(is_copyable)), name_of_subject);
INSTANTIATE_TEST_SUITE_P(every_class, retaining_copies, testing::ValuesIn(subjects_that(is_copied_by_retain)),
                         name_of_subject);
INSTANTIATE_TEST_SUITE_P(every_class, destructors, testing::ValuesIn(subjects_that(is_counted)), name_of_subject);

TEST(copies, exist_for_all_but_promises_and_early_kernels) {
    for (subject const& tested : subjects()) {
        bool const is_copied =
            tested.kind == "Kernel" ? tested.version >= 210 : !tested.name.ends_with("event_promise");
        EXPECT_EQ(is_copyable(tested), is_copied) << tested.name;
        EXPECT_EQ(bool(tested.borrow), is_copied && tested.kind != "Kernel") << tested.name;
    }
}

TEST_P(copying, copies_by_a_retain_or_a_clone) {
    auto const original = object(handle);
    {
        auto const copy = subject().copy(original.get());
        EXPECT_EQ(news(), calls({subject().clones() ? "Clone" : "Retain"}));
        EXPECT_EQ(subject().raw(copy.get()) == subject().raw(original.get()), !subject().clones());
        EXPECT_EQ(subject().handle(copy.get()), handle);
    }
    EXPECT_EQ(news(), calls({"Release"}));
    expect_failures(1, as_retain, [&] { subject().copy(original.get()); });
    EXPECT_EQ(handle.use_count(), 2);
}

TEST_P(copying, assignment_releases_then_retains) {
    auto const source = object(handle);
    auto const target = object(other_handle);
    void* const own = subject().raw(target.get());

    subject().copy_assign(source.get(), source.get());
    EXPECT_THAT(news(), IsEmpty());
    EXPECT_EQ(subject().handle(source.get()), handle);

    expect_failures(1, as_release, [&] { subject().copy_assign(target.get(), source.get()); });
    EXPECT_EQ(subject().raw(target.get()), own);
    EXPECT_EQ(subject().handle(target.get()), other_handle);

    subject().copy_assign(target.get(), source.get());
    if (subject().counted()) {
        EXPECT_EQ(libnq.calls().at(0).handle, other_handle.get());
        EXPECT_EQ(libnq.calls().at(1).handle, handle.get());
    }
    EXPECT_EQ(news(), calls({"Release", "Retain"}));
    EXPECT_EQ(libnq.references(own), 0);
    EXPECT_EQ(subject().raw(target.get()), subject().raw(source.get()));
    EXPECT_EQ(subject().handle(target.get()), handle);
    EXPECT_EQ(other_handle.use_count(), 1);
}

TEST_P(retaining_copies, assignment_that_cannot_retain_leaves_an_empty_object) {
    auto const source = object(handle);
    for (failing const& failure : failures) {
        auto const target = object(other_handle);
        libnq.fail(failure.how, 2);
        expect_thrown(failure.as_retain, [&] { subject().copy_assign(target.get(), source.get()); });
        EXPECT_EQ(subject().raw(target.get()), nullptr);
        EXPECT_EQ(subject().handle(target.get()), other_handle);
        news();
    }
    EXPECT_THAT(news(), IsEmpty());
}

// What the library's logger writes while this lives.
class log_capture {
public:
    log_capture() {
        auto* const logger = vorn::mero::internal::get_mero_logger();
        auto const sink = std::make_shared<spdlog::sinks::ostream_sink_mt>(text_);
        sink->set_pattern("%l: %v");
        logger->sinks() = {sink};
        logger->set_level(spdlog::level::trace);
    }
    log_capture(log_capture const&) = delete;
    log_capture& operator=(log_capture const&) = delete;
    ~log_capture() { vorn::mero::internal::get_mero_logger()->sinks().clear(); }

    std::string text() const { return text_.str(); }

private:
    std::ostringstream text_;
};

TEST_P(destructors, a_destructor_logs_what_fails) {
    std::string const name =
        subject().kind == "MemObject" ? "memory_object" : subject().name.substr(subject().name.find('.') + 1);
    std::string const line = "error: Exception caught in " + name + "::~" + name + "().\n";
    for (failing const& failure : failures) {
        log_capture const log;
        void* const raw = reference();
        libnq.fail(failure.how);
        subject().adopt(handle, raw);
        EXPECT_EQ(log.text(), line);
        EXPECT_EQ(news(), calls({"Release"}));
        EXPECT_EQ(handle.use_count(), 1);
        drop(raw);
        EXPECT_EQ(log.text(), line);
        news();
    }
}

// From OpenCL 2.1 on a copy is a kernel of its own, while copy assignment shares.
template <class Api>
class kernels : public scripted::versioned<Api> {};
using cloning = testing::Types<vorn::mero::opencl_2_1::api, vorn::mero::opencl_2_2::api>;
TYPED_TEST_SUITE(kernels, cloning);

TYPED_TEST(kernels, a_clone_is_adopted_as_it_is) {
    typename TypeParam::kernel const original(this->handle, this->libnq.template make<_nq_cl_kernel>(1),
                                              typename TypeParam::take_ownership{});
    {
        auto const copy = original.copy();
        EXPECT_FALSE(copy == original);
    }
    EXPECT_EQ(this->libnq.template last<nq::block::clCloneKernel>().source_kernel,
              vorn::mero::internal::owner_access::raw(original));
    EXPECT_THAT(this->libnq.names(), ElementsAre("clCloneKernel", "clReleaseKernel"));
}

} // namespace
