#pragma once

#include "scripted/scripted.hpp"

#include <gtest/gtest.h>

namespace scripted {

/// Starts every test with a fresh libnq, and ends it by asking that no
/// reference and no call handle is left. That is asked once the members of the
/// test's own fixture are gone.
class fixture : public testing::Test {
public:
    fixture(fixture const&) = delete;
    fixture& operator=(fixture const&) = delete;

protected:
    fixture() { libnq.reset(); }
    ~fixture() override { EXPECT_EQ(libnq.leftovers(), ""); }

    scripted::libnq& libnq = scripted::libnq::instance();
};

} // namespace scripted
