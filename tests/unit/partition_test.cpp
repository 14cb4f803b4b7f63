#include "unit/allocations.hpp"
#include "unit/members.hpp"

namespace unit {
namespace {

using namespace nq::block; // NOLINT(google-build-using-namespace)

template <class Api>
class partitions : public members<Api> {};
TYPED_TEST_SUITE(partitions, versions);

TYPED_TEST(partitions, has_no_parent_at_the_root) {
    if constexpr (TypeParam::number >= 120) {
        this->libnq.template reply<clGetDeviceInfo>(0x1042, scripted::bytes_of(word{0}));
        EXPECT_EQ(message_of<std::logic_error>([&] { this->objects.device.parent_device(); }),
                  "Querying for the parent of a root-level device.  You should add a check using "
                  "device::is_root_device() before calling device::parent_device().");
        EXPECT_EQ(this->libnq.names(), calls(2, "clGetDeviceInfo"));
    }
}

TYPED_TEST(partitions, refuses_more_than_one_partition_scheme) {
    if constexpr (TypeParam::number >= 120) {
        auto const two = scripted::bytes_of(word{0x1086}, word{0x1087});
        this->libnq.template reply<clGetDeviceInfo>(0x1044, two);
        EXPECT_THROW(this->objects.device.partition_equally_supported(), common::bad_implementation);
        EXPECT_THROW(this->objects.device.partition_by_counts_supported(), common::bad_implementation);
    }
}

TYPED_TEST(partitions, tells_how_it_was_partitioned) {
    if constexpr (TypeParam::number >= 120) {
        using words = std::vector<word>;
        for (auto const& [reply, expected] : {std::pair<words, words>{{0x1086, 4, 0}, {0x1086, 4, 0}},
                                              {{0x1087, 2, 0, 0}, {0x1087, 2, 0, 0}},
                                              {{0}, {}},
                                              {{0, 5}, {}},
                                              {{}, {}}}) {
            this->libnq.template reply<clGetDeviceInfo>(0x1046, scripted::bytes_of_list(reply));
            words found;
            for (std::intptr_t const property : this->objects.device.partition_type()) {
                found.push_back(word_of(property));
            }
            EXPECT_EQ(found, expected);
        }
    }
}

TYPED_TEST(partitions, is_partitioned_in_two_calls) {
    if constexpr (TypeParam::number >= 120) {
        auto& w = this->objects;
        using words = std::vector<word>;
        auto const makes = [&](words const& properties, auto partition) {
            for (std::uint32_t const count : {0U, 1U, 3U}) {
                this->libnq.template list<clCreateSubDevices>(count);
                this->forget();
                EXPECT_EQ(partition().size(), count);
                auto const made = this->libnq.calls();
                for (std::size_t n = 0; n != (count == 0 ? 1 : 2); ++n) {
                    EXPECT_EQ(made.at(n).bytes("properties"), scripted::bytes_of_list(properties));
                }
                this->expect_listing("clCreateSubDevices", handle_of(w.device), {u8(0, w.device)}, {16, 24, 32}, count,
                                     calls(count, "clReleaseDevice"));
            }
            for (unsigned const n : {1U, 2U}) {
                this->libnq.template fail<clCreateSubDevices>(scripted::status(-18), n);
                this->forget();
                EXPECT_THROW(partition(), common::device_partition_failed);
                EXPECT_EQ(this->libnq.names(), calls(n, "clCreateSubDevices"));
            }
        };
        makes({0x1086, 0xFFFFFFFF, 0}, [&] { return w.device.partition_equally(0xFFFFFFFF); });
        makes({0x1086, 0, 0}, [&] { return w.device.partition_equally(0); });
        makes({0x1087, 2, 3, 0}, [&] { return w.device.partition_by_counts({2, 3}); });
        makes({0x1087, 0}, [&] { return w.device.partition_by_counts({}); });
        makes({0x1088, 0x20, 0}, [&] { return w.device.partition_by_affinity(value{0x20}); });

        this->forget();
        EXPECT_EQ(message_of<std::logic_error>([&] {
                      w.device.partition_by_counts({2, 0, 3});
                  }),
                  "Cannot create a device with zero compute units.  Invalid usage of device::partition_by_counts()");
        EXPECT_EQ(this->libnq.names(), calls{});
    }
}

// Whatever allocation fails, every handle is released exactly once; the fixture asks for that.
TYPED_TEST(partitions, releases_every_sub_device_once) {
    if constexpr (TypeParam::number >= 120) {
        auto& w = this->objects;
        EXPECT_TRUE(w.device.safe_create_devices_from_ids({}).empty());
        std::size_t const tries = until_no_allocation_fails([&] {
            std::vector<_nq_cl_device_id*> const ids{this->libnq.template make<_nq_cl_device_id>(1),
                                                     this->libnq.template make<_nq_cl_device_id>(1),
                                                     this->libnq.template make<_nq_cl_device_id>(1)};
            return [&w, ids] {
                auto const made = w.device.safe_create_devices_from_ids(ids);
                for (std::size_t i = 0; i != ids.size(); ++i) {
                    EXPECT_EQ(word_of(made.at(i)), word_of(ids[i]));
                    EXPECT_EQ(handle_of(made[i]), handle_of(w.device));
                }
            };
        });
        EXPECT_GE(tries, 1U);
        until_no_allocation_fails([&] { return [&] { w.device.partition_by_counts({1, 2, 3, 4, 5}); }; });
    }
}

} // namespace
} // namespace unit
