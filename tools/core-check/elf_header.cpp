// SPDX-License-Identifier: Apache-2.0
#include "elf_header.h"

#include <array>
#include <fstream>

#include <link.h>

namespace core_check {

namespace {

/** Processor of a library, and its name. */
struct Machine {
    unsigned code;
    const char *name;
};

constexpr std::array<Machine, 6> kMachines = {{{EM_386, "32-bit x86"},
                                               {EM_ARM, "32-bit ARM"},
                                               {EM_X86_64, "x86-64"},
                                               {EM_AARCH64, "AArch64"},
                                               {EM_RISCV, "RISC-V"},
                                               {EM_PPC64, "PowerPC"}}};

#if defined(__x86_64__)
constexpr unsigned kOwnMachine = EM_X86_64;
#elif defined(__aarch64__)
constexpr unsigned kOwnMachine = EM_AARCH64;
#else
constexpr unsigned kOwnMachine = EM_NONE; // unknown: the loader decides
#endif

std::string machineName(unsigned code) {
    for (const Machine &machine : kMachines) {
        if (machine.code == code) {
            return machine.name;
        }
    }
    return "the ELF machine " + std::to_string(code);
}

} // namespace

std::string problemOfFile(const std::string &file) {
    ElfW(Ehdr) header{};
    std::ifstream input(file, std::ios::binary);
    input.read(reinterpret_cast<char *>(&header), sizeof header);
    if (!input ||
        std::char_traits<char>::compare(reinterpret_cast<const char *>(header.e_ident), ELFMAG, SELFMAG) != 0) {
        return "this is not a shared library";
    }
    // The type and the processor have the same place in all classes of ELF files.
    if (kOwnMachine != EM_NONE && header.e_machine != kOwnMachine) {
        return "the library is for " + machineName(header.e_machine) + ", this program for " + machineName(kOwnMachine);
    }
    return header.e_type == ET_DYN ? "" : "this is not a shared library";
}

} // namespace core_check
