#pragma once

// One job on several devices; a program that uses it includes this header beside `vorn/mero/easy.hpp`.

#include <vorn/mero/easy/devices.hpp>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <exception>
#include <string>
#include <utility>
#include <vector>

namespace vorn::mero::easy {

/// A device's part of a job: `count` items from `offset` on.
struct share {
    std::size_t offset; ///< The first item.
    std::size_t count;  ///< How many items; perhaps 0.
};

/// Shares of `count` items in proportion to weights, one after another; they may be empty. All are multiples of `step`,
/// but the largest, which takes what is left. Throws `bounds_error` unless the weights are finite, at least 0, one of
/// them above, and the step is not 0.
[[nodiscard]] inline std::vector<share> shares_of(std::size_t count, std::vector<double> const& weights,
                                                  std::size_t step = 1) {
    auto const is_fit = [](double weight) { return std::isfinite(weight) && weight >= 0; };
    double const most = weights.empty() ? 0 : *std::max_element(weights.begin(), weights.end());
    if (!std::all_of(weights.begin(), weights.end(), is_fit) || !(most > 0)) {
        throw bounds_error("shares need finite weights of at least 0, one of them above 0");
    }
    if (step == 0) {
        throw bounds_error("shares cannot be multiples of 0: give a step of at least 1");
    }
    double sum = 0; // in units of the largest, since the sum of the weights themselves may be no number
    for (double const weight : weights) {
        sum += weight / most;
    }
    std::vector<share> made;
    made.reserve(weights.size());
    std::size_t left = count;
    std::size_t const whole_steps = count / step;
    for (double const weight : weights) {
        auto const steps = static_cast<std::size_t>(static_cast<double>(whole_steps) * (weight / most / sum));
        made.push_back({0, std::min(steps * step, left)});
        left -= made.back().count;
    }
    auto const largest = std::max_element(weights.begin(), weights.end()) - weights.begin();
    made[static_cast<std::size_t>(largest)].count += left;
    std::size_t next = 0;
    for (share& each : made) {
        each.offset = std::exchange(next, next + each.count);
    }
    return made;
}

template <class T, int Version>
class split_array;

/// A job of `count` items, split over devices. An item is what the program likes: an element, a line of a picture.
///
///     ez::devices all;
///     auto kernels = all.kernels("mandelbrot", source);
///     ez::split lines(all, height);                              // in equal shares
///     auto steps = lines.array<std::uint32_t>(width);            // each device holds its lines
///     lines.run([&](std::size_t k, ez::share const& part) {      // of device k
///         return kernels[k](ez::range(width, part.count), steps[k], std::uint32_t(part.offset));
///     });
///     std::vector<std::uint32_t> const picture = steps.gather();
///
/// Not for several threads at once.
template <int Version>
class basic_split {
public:
    /// @{
    /// The types of the version.
    using devices_type = basic_devices<Version>;
    using event_type = basic_event<Version>;
    /// @}

    /// Equal shares, in multiples of `step`, see `shares_of`.
    basic_split(devices_type all, std::size_t count, std::size_t step = 1)
        : basic_split(all, count, std::vector<double>(all.size(), 1.0), step) {}

    /// Shares in proportion to weights, one for each device. Throws `bounds_error` if they do not fit.
    basic_split(devices_type all, std::size_t count, std::vector<double> const& weights, std::size_t step = 1)
        : devices_(std::move(all)), count_(count), step_(step) {
        weigh(weights);
    }

    /// The devices.
    [[nodiscard]] devices_type const& devices() const noexcept { return devices_; }
    /// The number of items.
    [[nodiscard]] std::size_t count() const noexcept { return count_; }
    /// The share of each device.
    [[nodiscard]] std::vector<share> const& shares() const noexcept { return shares_; }

    /// New shares in proportion to weights. Make arrays afterwards.
    void weigh(std::vector<double> const& weights) {
        if (weights.size() != devices_.size()) {
            throw bounds_error(detail::joined({std::to_string(weights.size()), " weights for ",
                                               std::to_string(devices_.size()), " devices: give each device one"}));
        }
        shares_ = shares_of(count_, weights, step_);
    }

    /// New shares by speed: has each device alone do `sample` items, which stand for the others, twice, and takes the
    /// time of the second turn. `work` is as in `run`. Make arrays afterwards. Returns the seconds of each device.
    template <class Work>
    std::vector<double> measure(share const& sample, Work&& work) {
        std::vector<double> seconds;
        std::vector<double> weights;
        for (std::size_t k = 0; k != devices_.size(); ++k) {
            work(k, sample).wait(); // the first turn fills caches
            auto const start = std::chrono::steady_clock::now();
            work(k, sample).wait();
            std::chrono::duration<double> const took = std::chrono::steady_clock::now() - start;
            seconds.push_back(took.count());
            weights.push_back(1 / std::max(took.count(), 1e-9));
        }
        weigh(weights);
        return seconds;
    }

    /// Has `work(k, share)` enqueue the share of each device `k` that has one; it returns the event of its last
    /// command. Starts all devices, then blocks until all have ended. Throws what the first failed with, when all have
    /// ended.
    template <class Work>
    void run(Work&& work) const {
        std::vector<event_type> events;
        std::exception_ptr failure;
        try {
            for (std::size_t k = 0; k != devices_.size(); ++k) {
                if (shares_[k].count != 0) {
                    events.push_back(work(k, std::as_const(shares_[k])));
                    devices_[k].flush();
                }
            }
        } catch (...) {
            failure = std::current_exception();
        }
        for (auto const& each : events) {
            try {
                each.wait();
            } catch (...) {
                failure = failure ? failure : std::current_exception();
            }
        }
        if (failure) {
            std::rethrow_exception(failure);
        }
    }

    /// Room for `per_item` elements of each item, on the device that has it. Throws `bounds_error` if that is too many.
    template <class T>
    [[nodiscard]] split_array<T, Version> array(std::size_t per_item = 1) const {
        return split_array<T, Version>(*this, per_item);
    }

    /// A copy of the values, `per_item` of each item; scatters them over the devices. Throws `bounds_error` if they are
    /// not as many.
    template <class T>
    [[nodiscard]] split_array<T, Version> scatter(std::vector<T> const& values, std::size_t per_item = 1) const {
        auto made = array<T>(per_item);
        made.scatter(values);
        return made;
    }

private:
    devices_type devices_;
    std::size_t count_;
    std::size_t step_;
    std::vector<share> shares_;
};

/// `basic_split` of the default version.
using split = basic_split<default_version>;

/// Elements that are spread over devices; made by a split, whose shares at that time they keep.
template <class T, int Version>
class split_array {
public:
    /// `per_item` elements of each item of a split.
    split_array(basic_split<Version> const& owner, std::size_t per_item)
        : shares_(owner.shares()), per_item_(per_item), size_(detail::product(owner.count(), per_item)) {
        for (std::size_t k = 0; k != shares_.size(); ++k) {
            arrays_.push_back(owner.devices()[k].template array<T>(shares_[k].count * per_item));
        }
    }

    /// The part of device `k`; as an argument of its kernels.
    [[nodiscard]] basic_array<T, Version>& operator[](std::size_t k) noexcept { return arrays_[k]; }
    /// The number of elements on all devices.
    [[nodiscard]] std::size_t size() const noexcept { return size_; }

    /// Writes all elements, to all devices at once. Blocks. Throws `bounds_error` if they are not as many.
    void scatter(std::vector<T> const& values) {
        if (values.size() != size_) {
            throw bounds_error(detail::joined(
                {std::to_string(values.size()), " elements do not fit a split array of ", std::to_string(size_)}));
        }
        transfer(
            [&](auto& array, std::size_t first) { return array.write_async(values.data() + first, array.size()); });
    }

    /// Reads all elements, from all devices at once. Blocks.
    [[nodiscard]] std::vector<T> gather() {
        std::vector<T> values(size_);
        transfer([&](auto& array, std::size_t first) { return array.read_async(values.data() + first, array.size()); });
        return values;
    }

private:
    template <class Start>
    void transfer(Start start) {
        std::vector<basic_transfer<Version>> all; // waits for those that have started, whatever happens
        all.reserve(arrays_.size());
        for (std::size_t k = 0; k != arrays_.size(); ++k) {
            all.push_back(start(arrays_[k], shares_[k].offset * per_item_));
            arrays_[k].flush();
        }
        for (auto const& each : all) {
            each.wait();
        }
    }

    std::vector<share> shares_;
    std::size_t per_item_;
    std::size_t size_;
    std::vector<basic_array<T, Version>> arrays_;
};

} // namespace vorn::mero::easy
