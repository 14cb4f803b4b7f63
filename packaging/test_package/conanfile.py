"""Builds a program with the package by CMake, and runs it."""

import os

from conan import ConanFile
from conan.tools.build import can_run
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain, cmake_layout


class TestPackage(ConanFile):
    settings = "os", "compiler", "build_type", "arch"
    generators = "VirtualRunEnv"

    def requirements(self):
        self.requires(self.tested_reference_str)

    def layout(self):
        cmake_layout(self)

    def generate(self):
        toolchain = CMakeToolchain(self)
        toolchain.user_presets_path = False  # nothing into the sources
        toolchain.generate()
        CMakeDeps(self).generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def test(self):
        if can_run(self):
            for name in ("program", "program_cps"):  # the second only where CMake knows CPS
                program = os.path.join(self.build_folder, name)
                if os.path.exists(program):
                    self.run(program, env="conanrun")
            if self.dependencies["vorn-mero"].options.with_tools:
                self.run("vorn-mero --version", env="conanrun")
