// A program without standard input.
// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <unistd.h>

/// For as long as it lives, descriptor 0 is free, as in a program that was started without standard input: the next
/// file that is opened gets it.
class CClosedInput
{
public:
    CClosedInput() : m_input(::dup(0))
    {
        if (::close(0) != 0)
            qFatal("there is no standard input");
    }
    ~CClosedInput()
    {
        ::dup2(m_input, 0);
        ::close(m_input);
    }
    CClosedInput(const CClosedInput&) = delete;
    CClosedInput& operator=(const CClosedInput&) = delete;

private:
    const int m_input;
};
