"""The recipe for Conan 2: `conan create . --build=missing`; scripts/conan runs it."""

import os
import re

from conan import ConanFile
from conan.errors import ConanInvalidConfiguration
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain, cmake_layout
from conan.tools.files import load
from conan.tools.scm import Version
from conan.tools.system.package_manager import Apt

OLDEST_COMPILERS = {"gcc": "12", "clang": "14"}


class VornMero(ConanFile):
    name = "vorn-mero"
    description = "An object interface to OpenCL"
    license = "Apache-2.0"
    package_type = "shared-library"
    settings = "os", "compiler", "build_type", "arch"
    options = {
        "shared": [True],  # there is no static library
        "with_bridge": [True, False],  # without it: -c user.vorn_mero:libnq=FILE names the libnq.so to link
        "with_tools": [True, False],  # the layers and the command vorn-mero
        "system_dependencies": [True, False],  # Debian's packages, instead of those of Conan
        "versions": ["ANY"],  # of OpenCL: "1_2;2_0"
    }
    default_options = {"shared": True, "with_bridge": True, "with_tools": True, "system_dependencies": True,
                       "versions": "1_0;1_1;1_2;2_0;2_1;2_2"}
    exports_sources = ("CMakeLists.txt", "LICENSE", "bridge/*", "cmake/*", "command/*", "gdb/*", "include/*", "layers/*",
                       "packaging/*", "src/*")
    test_package_folder = "packaging/test_package"

    def set_version(self):
        text = load(self, os.path.join(self.recipe_folder, "CMakeLists.txt"))
        self.version = re.search(r"project\(vorn-mero VERSION ([0-9.]+)", text).group(1)

    def layout(self):
        cmake_layout(self)

    def validate(self):
        check_min_cppstd(self, 17)  # of programs; the library sets its own
        compiler = str(self.settings.compiler)
        if self.settings.os != "Linux" or self.settings.arch not in ("x86_64", "armv8"):
            raise ConanInvalidConfiguration("this recipe is for 64-bit Linux")
        if Version(self.settings.compiler.version) < OLDEST_COMPILERS.get(compiler, "0"):
            raise ConanInvalidConfiguration(f"{compiler} {OLDEST_COMPILERS[compiler]} is the oldest that compiles it")
        if not self.options.with_bridge and not self._libnq():
            raise ConanInvalidConfiguration("with_bridge=False needs -c user.vorn_mero:libnq=FILE, the libnq.so to link")

    def _libnq(self):
        return self.conf.get("user.vorn_mero:libnq", default="", check_type=str)

    def requirements(self):
        if not self.options.system_dependencies:
            self.requires("spdlog/1.14.1", options={"shared": True}, transitive_headers=True)
            self.requires("opencl-headers/2023.12.14")
            if self.options.with_tools:
                self.requires("cli11/2.4.2")
                self.requires("nlohmann_json/3.11.3")
                self.requires("zstd/1.5.6")

    def system_requirements(self):
        if self.options.system_dependencies:
            Apt(self).install(["libspdlog-dev", "opencl-headers", *(["libcli11-dev", "libzstd-dev", "nlohmann-json3-dev"] if self.options.with_tools else [])])

    def generate(self):
        toolchain = CMakeToolchain(self)
        toolchain.cache_variables["VORN_MERO_VERSIONS"] = str(self.options.versions)
        toolchain.cache_variables["VORN_MERO_LAYERS"] = bool(self.options.with_tools)
        toolchain.cache_variables["VORN_MERO_COMMAND"] = bool(self.options.with_tools)
        if not self.options.with_bridge:
            toolchain.cache_variables["VORN_MERO_LIBNQ"] = self._libnq()
        toolchain.generate()
        CMakeDeps(self).generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()

    def package_info(self):
        # the package's own files have all of it: components, the versions, vorn_mero_kernels
        self.cpp_info.set_property("cmake_find_mode", "none")
        self.cpp_info.builddirs = ["."]
        self.cpp_info.set_property("pkg_config_name", "vorn-mero")
        self.cpp_info.libs = ["vorn-mero", *(["nq"] if self.options.with_bridge else [])]
