// interrupt.h: Ctrl-C, for commands that end by themselves.
#pragma once

/** From now on the first Ctrl-C only sets the mark, so that a run can end in order; a second one ends the program. */
void watchForInterrupt();
bool isInterrupted();
