#pragma once

#include "scripted/fixture.hpp"
#include "unit/subjects.hpp"

#include <vorn/mero/common/error.hpp>

#include <algorithm>
#include <gmock/gmock.h>
#include <nq/error.hpp>
#include <typeinfo>

namespace unit {

namespace common = vorn::mero::common;
using names = std::vector<std::string>;

/// A way in which a retain or a release fails, and what is thrown then.
struct failing {
    scripted::failure how;
    std::type_info const& as_retain;
    std::type_info const& as_release;
};

inline failing const failures[] = {
    {scripted::status(-5), typeid(common::out_of_resources), typeid(common::bad_implementation)},
    {scripted::status(-999), typeid(common::unknown_opencl_error), typeid(common::bad_implementation)},
    {scripted::layer(-1), typeid(nq::unrecoverable_error), typeid(nq::unrecoverable_error)},
    {scripted::layer(-2), typeid(nq::invalid_command_id), typeid(nq::invalid_command_id)},
    {scripted::layer(7), typeid(nq::unknown_error), typeid(nq::unknown_error)}};

/// Has an operation fail; it is to throw exactly what is expected.
template <class Operation>
void expect_thrown(std::type_info const& expected, Operation operation) {
    try {
        operation();
        ADD_FAILURE() << "nothing thrown";
    } catch (std::exception const& error) {
        EXPECT_EQ(typeid(error), expected);
        if (typeid(error) == typeid(common::bad_implementation)) {
            EXPECT_STREQ(error.what(), "OpenCL release operations should never fail.  Complain to your vendor.");
        }
    }
}

/// The classes of which something holds.
template <class Predicate>
std::vector<subject> subjects_that(Predicate holds) {
    std::vector<subject> chosen;
    std::copy_if(subjects().begin(), subjects().end(), std::back_inserter(chosen), holds);
    return chosen;
}

inline std::string name_of_subject(testing::TestParamInfo<subject> const& tested) {
    std::string name = tested.param.name;
    name[name.find('.')] = '_';
    return name;
}

class ownership : public scripted::fixture, public testing::WithParamInterface<subject> {
protected:
    ownership() { libnq.understand_null(subject().capability); }

    static unit::subject const& subject() { return GetParam(); }

    /// A raw handle with a reference that the test holds for the object to adopt, where the class counts any.
    void* reference() { return libnq.make<void>(subject().counted() ? 1 : 0); }

    any_object object(nq::call_handle const& used) { return subject().adopt(used, reference()); }

    void drop(void* raw) { subject().adopt(handle, raw); }

    /// The names of some operations as the class performs them; none for a class that is not counted.
    names calls(std::initializer_list<char const*> operations) const {
        names expected;
        for (std::string const operation : operations) {
            if (subject().counted()) {
                expected.push_back("cl" + operation + subject().kind);
            }
        }
        return expected;
    }

    /// What was called since the last look.
    names news() {
        auto const called = libnq.names();
        libnq.forget_calls();
        return called;
    }

    void expect_empty(void const* object) {
        EXPECT_EQ(subject().raw(object), nullptr);
        EXPECT_EQ(subject().handle(object), nullptr);
    }

    /// Every way to fail the n-th call of an operation, which then makes no further one.
    template <class Operation>
    void expect_failures(unsigned n, std::type_info const& (*thrown)(failing const&), Operation operation) {
        for (failing const& failure : failures) {
            if (!subject().counted()) {
                continue;
            }
            libnq.forget_calls();
            libnq.fail(failure.how, n);
            expect_thrown(thrown(failure), operation);
            EXPECT_EQ(libnq.calls().size(), n);
        }
        libnq.forget_calls();
    }

    static std::type_info const& as_retain(failing const& failure) { return failure.as_retain; }
    static std::type_info const& as_release(failing const& failure) { return failure.as_release; }

    nq::call_handle handle = libnq.open(subject().capability);
    nq::call_handle other_handle = libnq.open(subject().capability);
};

} // namespace unit
