#include "unit/members.hpp"

#include <algorithm>

namespace unit {

struct devices : members {
    api::device& d = w.device;
    _nq_cl_device_id* const raw = raw_of(d);

    // The members of one list read names, or test bits, that follow one another.
    void numbers(std::uint32_t name, auto... each) { reads_each(d, name, number, each...); }
    void sizes(std::uint32_t name, auto... each) { reads_each(d, name, large, each...); }
    void flags(std::uint32_t name, auto... each) { reads_bool(d, name, each...); }
    void bits(std::uint32_t name, unsigned first, auto... each) { (reads_bit(d, name, word{1} << first++, each), ...); }

    /// A member that is true for one answer, and false for others.
    template <class Answer>
    void tests(std::uint32_t name, Answer yes, std::initializer_list<Answer> no, auto member) {
        reads(d, name, true, member, reply_of(yes));
        for (Answer const answer : no) {
            reads(d, name, false, member, reply_of(answer));
        }
    }
};

TEST_F(devices, tell_numbers) {
    numbers(0x1001, &device::vendor_id, &device::max_compute_units, &device::max_work_item_dimensions);
    numbers(0x1006, &device::preferred_vector_width_char, &device::preferred_vector_width_short,
            &device::preferred_vector_width_int, &device::preferred_vector_width_long,
            &device::preferred_vector_width_float, &device::preferred_vector_width_double, &device::max_clock_frequency,
            &device::address_bits, &device::max_read_image_args);
    numbers(0x1018, &device::max_samplers, &device::mem_base_addr_align);
    numbers(0x101D, &device::global_mem_cacheline_size);
    numbers(0x1021, &device::max_constant_args);
    sizes(0x1004, &device::max_work_group_size);
    sizes(0x1010, &device::max_mem_alloc_size, &device::image2d_max_width, &device::image2d_max_height,
          &device::image3d_max_width, &device::image3d_max_height, &device::image3d_max_depth);
    sizes(0x1017, &device::max_parameter_size);
    sizes(0x101E, &device::global_mem_cache_size, &device::global_mem_size, &device::max_constant_buffer_size);
    sizes(0x1023, &device::local_mem_size);
    sizes(0x1025, &device::profiling_timer_resolution);
#if UNIT_OPENCL >= 110
    numbers(0x1034, &device::preferred_vector_width_half);
    numbers(0x1036, &device::native_vector_width_char, &device::native_vector_width_short,
            &device::native_vector_width_int, &device::native_vector_width_long, &device::native_vector_width_float,
            &device::native_vector_width_double, &device::native_vector_width_half);
#endif
#if UNIT_OPENCL >= 110 && UNIT_OPENCL < 120
    numbers(0x101A, &device::min_data_type_align_size);
#endif
#if UNIT_OPENCL >= 120
    numbers(0x1043, &device::partition_max_sub_devices);
    sizes(0x1040, &device::image_max_buffer_size, &device::image_max_array_size);
    sizes(0x1045, &device::partition_supported_affinity_domains);
    sizes(0x1049, &device::printf_buffer_size);
#endif
#if UNIT_OPENCL < 200
    numbers(0x100F, &device::max_write_image_args);
#else
    numbers(0x104A, &device::image_pitch_alignment, &device::image_base_address_alignment,
            &device::max_read_write_image_args);
    numbers(0x104F, &device::queue_on_device_preferred_size, &device::queue_on_device_max_size,
            &device::max_on_device_queues, &device::max_on_device_events);
    numbers(0x1055, &device::max_pipe_args, &device::pipe_max_active_reservations, &device::pipe_max_packet_size,
            &device::preferred_platform_atomic_alignment, &device::preferred_global_atomic_alignment,
            &device::preferred_local_atomic_alignment);
    sizes(0x104D, &device::max_global_variable_size);
    sizes(0x1054, &device::global_variable_preferred_total_size);
#endif
#if UNIT_OPENCL >= 210
    numbers(0x105C, &device::max_num_sub_groups);
#endif
}

TEST_F(devices, tell_what_they_can) {
    flags(0x1016, &device::image_support);
    flags(0x1024, &device::error_correction_support);
    flags(0x1026, &device::endian_little, &device::available, &device::compiler_available);
    bits(0x101B, 0, &device::single_fp_denorms_supported, &device::single_fp_inf_nan_supported,
         &device::single_fp_round_to_nearest_supported, &device::single_fp_round_to_zero_supported,
         &device::single_fp_round_to_inf_supported, &device::single_fp_fma_supported);
    bits(0x1032, 0, &device::double_fp_denorms_supported, &device::double_fp_inf_nan_supported,
         &device::double_fp_round_to_nearest_supported, &device::double_fp_round_to_zero_supported,
         &device::double_fp_round_to_inf_supported, &device::double_fp_fma_supported);
    bits(0x1029, 0, &device::can_execute_kernels, &device::can_execute_native_kernels);
    tests<word>(0x1000, 1, {0, 2, 5}, &device::is_type_default);
    tests<word>(0x1000, 2, {0, 1, 3}, &device::is_type_cpu);
    tests<word>(0x1000, 4, {0, 1, 5}, &device::is_type_gpu);
    tests<word>(0x1000, 8, {0, 9}, &device::is_type_accelerator);
    tests<std::uint32_t>(0x101C, 0, {1, 2}, &device::is_global_mem_cache_type_none);
    tests<std::uint32_t>(0x101C, 1, {0, 2, 3}, &device::is_global_mem_cache_type_read_only);
    tests<std::uint32_t>(0x101C, 2, {0, 1, 3}, &device::is_global_mem_cache_type_read_write);
    tests<std::uint32_t>(0x1022, 1, {0, 2, 3}, &device::dedicated_local_memory);
#if UNIT_OPENCL >= 110
    bits(0x101B, 6, &device::single_fp_software_emulated);
    bits(0x1032, 6, &device::double_fp_software_emulated);
#endif
#if UNIT_OPENCL >= 110 && UNIT_OPENCL < 200
    flags(0x1035, &device::host_unified_memory);
#endif
#if UNIT_OPENCL >= 120
    flags(0x103E, &device::linker_available);
    flags(0x1048, &device::preferred_interop_user_sync);
    bits(0x101B, 7, &device::single_fp_correctly_rounded_divide_sqrt);
    tests<word>(0x1000, 16, {0, 17}, &device::is_type_custom);
    tests<word>(0x1042, 0, {0x1000, ~word{0}}, &device::is_root_device);
    tests<word>(0x1044, 0x1086, {0, 0x1087, 0x1088}, &device::partition_equally_supported);
    tests<word>(0x1044, 0x1087, {0, 0x1086, 0x1088}, &device::partition_by_counts_supported);
    tests<word>(0x1045, word{1} << 40, {0}, &device::partition_affinity_domain_supported);
#endif
#if UNIT_OPENCL < 200
    bits(0x102A, 0, &device::out_of_order_command_queue_supported, &device::profiling_command_queue_supported);
#else
    bits(0x102A, 0, &device::host_out_of_order_command_queue_supported,
         &device::host_profiling_command_queue_supported);
    bits(0x104E, 0, &device::device_out_of_order_command_queue_supported,
         &device::device_profiling_command_queue_supported);
    bits(0x1053, 0, &device::svm_coarse_grain_buffer_supported, &device::svm_fine_grain_buffer_supported,
         &device::svm_fine_grain_system_supported, &device::svm_atomics_supported);
#endif
#if UNIT_OPENCL >= 210
    flags(0x105D, &device::sub_group_independent_forward_progress);
#endif
}

TEST_F(devices, tell_texts_lists_and_objects) {
    reads_each(d, 0x102B, "a text", &device::name, &device::vendor, &device::driver_version);
    reads(d, 0x102F, "OpenCL 1", &device::device_version);
    reads(d, 0x1030, names{"a;b", "c"}, &device::extensions, reply_of(" a;b  c "));
    for (std::string const profile : {"EMBEDDED_PROFILE", "FULL_PROFILE", ""}) {
        bool const is_embedded = profile == "EMBEDDED_PROFILE";
        reads(d, 0x102E, is_embedded, &device::is_embedded_profile, reply_of(profile));
        reads(d, 0x102E, !is_embedded, &device::is_full_profile, reply_of(profile));
    }
    reads(d, 0x1005, array3{7, 8, large}, &device::max_work_item_sizes);
    reads(d, 0x1031, w.platform, &device::get_platform);
#if UNIT_OPENCL >= 110
    reads(d, 0x103D, "C", &device::opencl_c_version);
#endif
#if UNIT_OPENCL >= 120
    reads(d, 0x103F, names{"a b", "c"}, &device::built_in_kernels, reply_of(";a b;;c"));
    reads(d, 0x1042, w.device_2, &device::parent_device);
    reads(d, 0x1046, words{0x1086, 4, 0}, &device::partition_type);
    reads(d, 0x1046, words{0x1087, 2, 0, 0}, &device::partition_type);
    reads(d, 0x1046, words{}, &device::partition_type, reply_of(words{0}));
    reads(d, 0x1046, words{}, &device::partition_type, reply_of(words{0, 5}));
#endif
#if UNIT_OPENCL >= 210
    reads(d, 0x105B, "SPIR-V", &device::il_version);
#endif
}

TEST_F(devices, allocate_for_their_results_alone) {
    libnq.reply<clGetDeviceInfo>(0x102B, reply_of(std::string(100, 'a')));
    libnq.reply<clGetDeviceInfo>(0x100D, reply_of(number));
    libnq.reply<clGetDeviceInfo>(0x1005, std::string(24, '\1'));
    EXPECT_EQ(allocations_of([&] { d.address_bits(); }), 0U);
    EXPECT_EQ(allocations_of([&] { d.max_work_item_sizes(); }), 0U);
    EXPECT_EQ(allocations_of([&] { d.name(); }), 1U);
}

#if UNIT_OPENCL >= 210
TEST_F(devices, tell_the_time) {
    libnq.on<clGetHostTimer>([](clGetHostTimer& block) { return (*block.host_timestamp = 0x1111) != 0; });
    libnq.on<clGetDeviceAndHostTimer>([](clGetDeviceAndHostTimer& block) {
        *block.device_timestamp = 0x2222;
        return (*block.host_timestamp = 0x3333) != 0;
    });
    EXPECT_EQ(d.get_host_timer(), 0x1111U);
    EXPECT_EQ(d.get_device_and_host_timer(), (std::pair<word, word>{0x3333, 0x2222}));
    expect_sent(d, clGetHostTimer{raw, somewhere}, clGetDeviceAndHostTimer{raw, somewhere, somewhere});
    withstands([&] { d.get_host_timer(); });
    withstands([&] { d.get_device_and_host_timer(); });
}
#endif

#if UNIT_OPENCL >= 120
TEST_F(devices, have_no_parent_at_the_root) {
    libnq.reply<clGetDeviceInfo>(0x1042, reply_of(word{0}));
    throws<std::logic_error>("Querying for the parent of a root-level device.  You should add a check using "
                             "device::is_root_device() before calling device::parent_device().",
                             [&] { d.parent_device(); });
    EXPECT_EQ(libnq.names(), names(2, "clGetDeviceInfo"));
}

TEST_F(devices, refuse_more_than_one_partition_scheme) {
    libnq.reply<clGetDeviceInfo>(0x1044, reply_of(words{0x1086, 0x1087}));
    EXPECT_THROW(d.partition_equally_supported(), common::bad_implementation);
    EXPECT_THROW(d.partition_by_counts_supported(), common::bad_implementation);
}

TEST_F(devices, are_partitioned_in_two_calls) {
    auto const makes = [&](std::vector<std::int64_t> const& properties, auto partition) {
        for (std::uint32_t const count : {0U, 1U, 3U}) {
            clCreateSubDevices const counting{raw, properties.data(), 0, nullptr, somewhere};
            lists(d, counting, {raw, properties.data(), count, somewhere, nullptr}, count, partition);
        }
    };
    makes({0x1086, 0xFFFFFFFF, 0}, [&] { return d.partition_equally(0xFFFFFFFF); });
    makes({0x1086, 0, 0}, [&] { return d.partition_equally(0); });
    makes({0x1087, 2, 3, 0}, [&] { return d.partition_by_counts({2, 3}); });
    makes({0x1087, 0}, [&] { return d.partition_by_counts({}); });
    makes({0x1088, 0x20, 0}, [&] { return d.partition_by_affinity(value{0x20}); });
    refuses<std::logic_error>(
        "Cannot create a device with zero compute units.  Invalid usage of device::partition_by_counts()", [&] {
            d.partition_by_counts(std::vector<unsigned>{2, 0, 3});
        });
}

// Whatever allocation fails, every handle is released exactly once; the fixture asks for that.
TEST_F(devices, release_every_sub_device_once) {
    EXPECT_TRUE(d.safe_create_devices_from_ids({}).empty());
    std::size_t const tries = until_no_allocation_fails([&] {
        std::vector<_nq_cl_device_id*> ids(3);
        std::generate(ids.begin(), ids.end(), [&] { return libnq.make<_nq_cl_device_id>(1); });
        return [this, ids] {
            auto const made = d.safe_create_devices_from_ids(ids);
            EXPECT_EQ(reply_of(made), reply_of(ids));
            expect_handle(made, handle_of(d));
        };
    });
    EXPECT_GE(tries, 1U);
}
#endif

} // namespace unit
