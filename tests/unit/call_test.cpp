#include "unit/members.hpp"

#include <climits>
#include <fstream>

// How the call layer fails, and the numbers under which the version performs its entry points.

namespace unit {
namespace {

using calls = members;

// What a status does, and that nothing is taken from a call that fails, is part of every member's test.
TEST_F(calls, a_failing_call_layer_has_its_exception) {
    for (int const result : {-2, -1, 1, -11, INT_MIN}) {
        libnq.fail(scripted::layer(result));
        try {
            w.queue.finish();
            ADD_FAILURE() << "nothing was thrown";
        } catch (nq::nq_error const& error) {
            EXPECT_EQ(typeid(error), result == -2   ? typeid(nq::invalid_command_id)
                                     : result == -1 ? typeid(nq::unrecoverable_error)
                                                    : typeid(nq::unknown_error));
            EXPECT_STREQ(error.what(), result == -2   ? "Invalid command ID provided to capability call."
                                       : result == -1 ? ""
                                                      : "Unknown error code returned by libnq.");
            EXPECT_EQ(error.code(), result);
        }
    }
}

template <class... Blocks>
names names_of(nq::command_list<Blocks...>) {
    return {std::string(scripted::name_of<Blocks>())...};
}

// Each row of the file is an entry point and its id in each of the six versions, 0 where the version lacks it.
TEST_F(calls, entry_points_have_the_ids_of_their_version) {
    names const made = names_of(nq::commands<api::capability>());
    names expected(made.size());
    std::ifstream file(UNIT_COMMAND_IDS);
    for (std::string name; file >> name;) {
        std::array<std::size_t, 6> ids{};
        for (std::size_t& id : ids) {
            file >> id;
        }
        if (std::size_t const id = ids[static_cast<std::size_t>(api::capability) - 1]) {
            expected.at(id - 1) = name;
        }
    }
    EXPECT_EQ(made, expected);
}

} // namespace
} // namespace unit
