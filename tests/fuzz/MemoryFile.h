// Bytes in memory as a file with a name, for code that opens files.
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

class CMemoryFile
{
public:
    CMemoryFile(const uint8_t* data, size_t size) : m_descriptor(memfd_create("fuzz", MFD_CLOEXEC))
    {
        if (m_descriptor < 0 || write(m_descriptor, data, size) != ssize_t(size)) {
            std::perror("memory file");
            std::exit(1);
        }
        m_name = "/proc/self/fd/" + std::to_string(m_descriptor);
    }
    ~CMemoryFile() { close(m_descriptor); }
    CMemoryFile(const CMemoryFile&) = delete;
    CMemoryFile& operator=(const CMemoryFile&) = delete;

    const char* name() const { return m_name.c_str(); }

private:
    int m_descriptor;
    std::string m_name;
};
