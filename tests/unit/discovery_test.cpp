#include "scripted/fixture.hpp"
#include "unit/allocations.hpp"

#include <vorn/mero/opencl.hpp>

#include <gmock/gmock.h>

namespace {

namespace block = nq::block;
using namespace vorn::mero;
using testing::ElementsAre;
using node = nq::capability_node;

// A call of libnq in one line.
std::string line(scripted::discovery_call const& made) {
    if (made.function == "nq_create_call_handle") {
        return "open " + std::to_string(made.node.first) + " " + std::to_string(made.node.second);
    }
    std::string const listing = " " + std::to_string(made.capacity) + (made.has_array ? " array" : "");
    return made.function == "nq_version" ? "version"
           : made.function == "nq_get_root_devices"
               ? "roots" + listing
               : "nodes of " + std::to_string(made.device) + " for " +
                     std::to_string(static_cast<std::uint64_t>(made.capability)) + listing;
}

template <class Api>
class discovery : public scripted::fixture {
protected:
    static constexpr nq::capability wanted = Api::capability;
    static constexpr std::uint64_t number = static_cast<std::uint64_t>(wanted);

    // Three nodes on two of three root devices.
    discovery() {
        libnq.roots.elements = {71, 72, 73};
        libnq.nodes = {{{71, wanted}, {{{1, number}, {2, number}}}}, {{73, wanted}, {{{3, number}}}}};
    }

    std::vector<std::string> lines() const {
        std::vector<std::string> lines;
        for (auto const& made : libnq.discovery_calls()) {
            lines.push_back(line(made));
        }
        return lines;
    }

    std::string nodes_of(int root, std::string const& listing) const {
        return "nodes of " + std::to_string(root) + " for " + std::to_string(number) + " " + listing;
    }

    std::string open(int first) const { return "open " + std::to_string(first) + " " + std::to_string(number); }

    // What a failure anywhere on the way leaves behind: nothing.
    template <class Exception>
    void expect_failure(std::size_t calls) {
        libnq.forget_calls();
        EXPECT_THROW(Api::get_all_devices(), Exception);
        EXPECT_EQ(libnq.discovery_calls().size(), calls);
        EXPECT_EQ(libnq.leftovers(), "");
    }
};

using versions = testing::Types<opencl_1_0::api, opencl_1_1::api, opencl_1_2::api, opencl_2_0::api, opencl_2_1::api,
                                opencl_2_2::api>;
TYPED_TEST_SUITE(discovery, versions);

TYPED_TEST(discovery, asks_in_two_phases_and_opens_every_node_in_order) {
    auto const devices = TypeParam::get_all_devices();
    EXPECT_THAT(this->lines(),
                ElementsAre("version", "roots 0", "roots 3 array", this->nodes_of(71, "0"),
                            this->nodes_of(71, "2 array"), this->open(1), this->open(2), this->nodes_of(72, "0"),
                            this->nodes_of(73, "0"), this->nodes_of(73, "1 array"), this->open(3)));
    EXPECT_EQ(devices.size(), 3U);
    EXPECT_EQ(this->libnq.open_handles(), 3U);
    std::vector<std::string> const once = TypeParam::number < 120
                                              ? std::vector<std::string>{"call_handle_device"}
                                              : std::vector<std::string>{"call_handle_device", "clRetainDevice"};
    std::vector<std::string> expected;
    for (std::size_t i = 0; i != devices.size(); ++i) {
        expected.insert(expected.end(), once.begin(), once.end());
    }
    EXPECT_EQ(this->libnq.names(), expected);
    EXPECT_EQ(this->libnq.calls().back().handle, internal::owner_access::call_handle(devices.back()).get());
    EXPECT_FALSE(devices[0] == devices[1]);
}

TYPED_TEST(discovery, refuses_every_other_version) {
    for (std::uint64_t const version :
         {0x8000000000000001U, 0x7FFFFFFFFFFFFFFFU, std::uint64_t{0}, ~std::uint64_t{0}}) {
        this->libnq.version = version;
        this->libnq.forget_calls();
        try {
            TypeParam::get_all_devices();
            ADD_FAILURE() << "nothing thrown";
        } catch (std::runtime_error const& error) {
            EXPECT_EQ(typeid(error), typeid(std::runtime_error));
            EXPECT_STREQ(error.what(), "The libnq version detected is incompatible with this version of MERO.");
        }
        EXPECT_THAT(this->lines(), ElementsAre("version"));
    }
}

TYPED_TEST(discovery, finds_nothing_where_there_is_nothing) {
    this->libnq.roots.elements = {};
    EXPECT_TRUE(TypeParam::get_all_devices().empty());
    EXPECT_THAT(this->lines(), ElementsAre("version", "roots 0"));
}

TYPED_TEST(discovery, takes_a_second_count_only_if_it_is_smaller) {
    auto& roots = this->libnq.roots;
    roots.counts = {3, 1};
    EXPECT_EQ(TypeParam::get_all_devices().size(), 2U);
    roots.counts = {1, 3};
    EXPECT_EQ(TypeParam::get_all_devices().size(), 2U);
    roots.counts = {3, 0};
    EXPECT_EQ(TypeParam::get_all_devices().size(), 0U);
    roots.counts = {};
    auto& nodes = this->libnq.nodes.begin()->second;
    nodes.counts = {2, 1};
    EXPECT_EQ(TypeParam::get_all_devices().size(), 2U);
    nodes.counts = {1, 2};
    EXPECT_EQ(TypeParam::get_all_devices().size(), 2U);
}

TYPED_TEST(discovery, passes_on_zeros_where_nothing_was_written) {
    this->libnq.roots.counts = {4, 4};
    TypeParam::get_all_devices();
    EXPECT_EQ(this->lines().back(), this->nodes_of(0, "0"));
    this->libnq.roots.counts = {};
    this->libnq.nodes.begin()->second.counts = {3, 3};
    this->libnq.forget_calls();
    // The scripted libnq opens the zero node too, but knows no command of it.
    EXPECT_THROW(TypeParam::get_all_devices(), nq::unrecoverable_error);
    EXPECT_EQ(this->lines().back(), "open 0 0");
}

TYPED_TEST(discovery, leaves_nothing_open_when_a_listing_or_an_opening_fails) {
    this->libnq.roots.results = {-1, 0};
    this->template expect_failure<nq::unrecoverable_error>(2);
    this->libnq.roots.results = {0, 5};
    this->template expect_failure<nq::unknown_error>(3);
    this->libnq.roots.results = {};
    auto& last = this->libnq.nodes.rbegin()->second;
    last.results = {-2, 0};
    this->template expect_failure<nq::invalid_command_id>(9);
    last.results = {0, -1};
    this->template expect_failure<nq::unrecoverable_error>(10);
    last.results = {};
    for (unsigned n = 1; n <= 3; ++n) {
        this->libnq.fail_open(-1, n);
        this->template expect_failure<nq::unrecoverable_error>(n == 3 ? 11 : 5 + n);
    }
}

TYPED_TEST(discovery, leaves_nothing_open_when_a_device_cannot_be_made) {
    for (unsigned n = 1; n <= 3; ++n) {
        std::size_t const calls = n == 3 ? 11 : 5 + n;
        this->libnq.template fail<block::call_handle_device>(scripted::layer(-1), n);
        this->template expect_failure<nq::unrecoverable_error>(calls);
        if constexpr (TypeParam::number >= 120) {
            this->libnq.template fail<block::clRetainDevice>(scripted::status(-33), n);
            this->template expect_failure<common::invalid_device>(calls);
        }
    }
}

TYPED_TEST(discovery, leaves_nothing_open_when_memory_runs_out) {
    auto const failures = unit::until_no_allocation_fails([&] {
        EXPECT_EQ(this->libnq.leftovers(), "");
        return [] { TypeParam::get_all_devices(); };
    });
    EXPECT_GE(failures, 7U); // two listings, three shared handles, the growing result
}

TYPED_TEST(discovery, makes_what_the_factory_makes) {
    std::vector<nq_call_handle*> given;
    auto const found =
        internal::find_devices<nq::call_handle>(TypeParam::capability, [&](nq::call_handle const& handle) {
            given.push_back(handle.get());
            return handle;
        });
    ASSERT_EQ(found.size(), 3U);
    for (std::size_t i = 0; i != found.size(); ++i) {
        EXPECT_EQ(found[i].get(), given[i]);
        EXPECT_EQ(found[i].use_count(), 1);
    }
    EXPECT_TRUE(this->libnq.calls().empty());
}

} // namespace
