// interrupt.cpp: Ctrl-C, for commands that end by themselves.
#include "interrupt.h"

#include <atomic>
#include <csignal>

static std::atomic<bool> interrupted{ false };

extern "C" void onInterrupt(int)
{
    interrupted = true;
    std::signal(SIGINT, SIG_DFL);
}

void watchForInterrupt()
{
    std::signal(SIGINT, onInterrupt);
}

bool isInterrupted()
{
    return interrupted;
}
