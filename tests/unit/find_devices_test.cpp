#include "unit/members.hpp"

namespace unit {

struct discovery : fixture {
    static constexpr nq::capability wanted = api::capability;
    static constexpr std::uint64_t version = static_cast<std::uint64_t>(wanted);

    // Three nodes on two of three root devices.
    discovery() {
        libnq.roots.elements = {71, 72, 73};
        libnq.nodes = {{{71, wanted}, {{{1, version}, {2, version}}}}, {{73, wanted}, {{{3, version}}}}};
    }

    std::string nodes_of(int root, std::string const& listing) const {
        return "nodes of " + std::to_string(root) + " for " + std::to_string(version) + " " + listing;
    }

    std::string open(int first) const { return "open " + std::to_string(first) + " " + std::to_string(version); }

    // What a failure anywhere on the way leaves behind: nothing.
    template <class Exception>
    void expect_failure(std::size_t calls) {
        libnq.forget_calls();
        EXPECT_THROW(get_all_devices(), Exception);
        EXPECT_EQ(libnq.discovery_calls.size(), calls);
        EXPECT_EQ(libnq.leftovers(), "");
    }
};

TEST_F(discovery, asks_in_two_phases_and_opens_every_node_in_order) {
    auto const devices = get_all_devices();
    EXPECT_EQ(libnq.discovery_calls,
              (names{"version", "roots 0", "roots 3 array", nodes_of(71, "0"), nodes_of(71, "2 array"), open(1),
                     open(2), nodes_of(72, "0"), nodes_of(73, "0"), nodes_of(73, "1 array"), open(3)}));
    EXPECT_EQ(devices.size(), 3U);
    EXPECT_EQ(libnq.open_handles.size(), 3U);
    names expected;
    for (std::size_t i = 0; i != devices.size(); ++i) {
        expected.push_back("call_handle_device");
        expected.insert(expected.end(), counted<device> ? 1 : 0, "clRetainDevice");
    }
    EXPECT_EQ(libnq.names(), expected);
    EXPECT_EQ(libnq.calls.back().handle, handle_of(devices.back()));
    EXPECT_FALSE(devices[0] == devices[1]);
}

TEST_F(discovery, refuses_every_other_version) {
    for (word const other : {0x8000000000000001U, 0x7FFFFFFFFFFFFFFFU, word{0}, ~word{0}}) {
        libnq.version = other;
        libnq.forget_calls();
        throws<std::runtime_error>("The libnq version detected is incompatible with this version of MERO.",
                                   [] { get_all_devices(); });
        EXPECT_EQ(libnq.discovery_calls, names{"version"});
    }
}

TEST_F(discovery, finds_nothing_where_there_is_nothing) {
    libnq.roots.elements = {};
    EXPECT_TRUE(get_all_devices().empty());
    EXPECT_EQ(libnq.discovery_calls, (names{"version", "roots 0"}));
}

TEST_F(discovery, takes_a_second_count_only_if_it_is_smaller) {
    auto const finds = [](auto& listing, std::uint64_t first, std::uint64_t second, std::size_t expected) {
        listing.counts = {first, second};
        EXPECT_EQ(get_all_devices().size(), expected);
        listing.counts = {};
    };
    finds(libnq.roots, 3, 1, 2);
    finds(libnq.roots, 1, 3, 2);
    finds(libnq.roots, 3, 0, 0);
    finds(libnq.nodes[{71, wanted}], 2, 1, 2);
    finds(libnq.nodes[{71, wanted}], 1, 2, 2);
}

TEST_F(discovery, passes_on_zeros_where_nothing_was_written) {
    libnq.roots.counts = {4, 4};
    get_all_devices();
    EXPECT_EQ(libnq.discovery_calls.back(), nodes_of(0, "0"));
    libnq.roots.counts = {};
    libnq.nodes[{71, wanted}].counts = {3, 3};
    // The scripted libnq opens the zero node too, but knows no command of it.
    EXPECT_THROW(get_all_devices(), nq::unrecoverable_error);
    EXPECT_EQ(libnq.discovery_calls.back(), "open 0 0");
}

TEST_F(discovery, leaves_nothing_open_when_a_listing_fails) {
    auto& last = libnq.nodes[{73, wanted}];
    libnq.roots.results = {-1, 0};
    expect_failure<nq::unrecoverable_error>(2);
    libnq.roots.results = {0, 5};
    expect_failure<nq::unknown_error>(3);
    libnq.roots.results = {};
    last.results = {-2, 0};
    expect_failure<nq::invalid_command_id>(9);
    last.results = {0, -1};
    expect_failure<nq::unrecoverable_error>(10);
}

TEST_F(discovery, leaves_nothing_open_when_a_device_cannot_be_made) {
    for (unsigned n = 1; n <= 3; ++n) {
        std::size_t const calls = n == 3 ? 11 : 5 + n;
        libnq.fail(scripted::layer(-1), n, "nq_create_call_handle");
        expect_failure<nq::unrecoverable_error>(calls);
        libnq.fail<call_handle_device>(scripted::layer(-1), n);
        expect_failure<nq::unrecoverable_error>(calls);
        if (counted<device>) {
            libnq.fail(scripted::status(-33), n, "clRetainDevice");
            expect_failure<common::invalid_device>(calls);
        }
    }
}

TEST_F(discovery, leaves_nothing_open_when_memory_runs_out) {
    withstands([] { return get_all_devices(); });
}

} // namespace unit
