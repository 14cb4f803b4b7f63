#pragma once

// Every class of every version in a form that one test runs over.

#include <nq/call_handle.hpp>

#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

namespace unit {

using any_object = std::shared_ptr<void>;

/// One class of one version. Operations that the class lacks are empty.
struct subject {
    std::string name; // "opencl_1_2.context"
    int version;      // 120
    nq::capability capability;
    std::string kind; // of its entry points: "Context" for clRetainContext; empty for classes that are not counted

    std::function<any_object(nq::call_handle const&, void*)> adopt;
    std::function<any_object(nq::call_handle const&, void*)> borrow;
    std::function<any_object(nq::call_handle const&, void*)> create; // the function of `raw`
    std::function<any_object(void const*)> copy;
    std::function<any_object(void*)> move;
    std::function<void(void*, void const*)> copy_assign;
    std::function<void(void*, void*)> move_assign;

    std::function<bool(void const*, void const*)> equal;
    std::function<bool(void const*, void const*)> less;
    std::function<std::size_t(void const*)> hash;

    std::function<void*(void const*)> raw;
    std::function<nq::call_handle const&(void const*)> handle;
    std::function<void(void const*)> retain;
    std::function<void(void const*)> release;
    std::function<std::uint32_t(void const*)> refcount;

    bool counted() const { return !kind.empty(); }
    bool clones() const { return copy && kind == "Kernel"; }
};

void PrintTo(subject const& printed, std::ostream* stream);

/// All of them, in the order of the versions.
std::vector<subject> const& subjects();

} // namespace unit
