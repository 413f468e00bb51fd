#pragma once
// "Now" for the telescope commands: the moment of --date/--time when one is given, else the
// machine clock (so that a procedure that waits for the user sees the time pass).
namespace nocturnel {

void useCommandLineClockForScope();

}  // namespace nocturnel
