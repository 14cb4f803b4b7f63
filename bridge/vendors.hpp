#pragma once

// The vendor libraries that the ICD loader loads.

#include <string>
#include <vector>

namespace nq::bridge {

struct vendor {
    std::string file;   // the .icd file that names the library; empty where the environment names it
    std::string driver; // the vendor's library
};

/// What names a vendor's library, and how a user gets one.
extern char const* const vendor_entry;
extern char const* const vendor_remedy;

/// Where the loader looks: OCL_ICD_VENDORS, OPENCL_VENDOR_PATH or the system's folder; on Windows a key of the
/// registry.
std::string vendor_setting();

/// The libraries that a setting names: a folder of .icd files, one such file, or a library; on Windows the values of
/// the key that are 0.
std::vector<vendor> list_vendors(std::string const& setting);

} // namespace nq::bridge
