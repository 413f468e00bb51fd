#pragma once
// The "Time Step" choices of Preference 3/6 as durations: how far the chart's time moves
// forward or back per step.
namespace nocturnel {

// Seconds of one step for a stored timeStep index (0 "1 mn" .. 16 "90 Days"); 60 for an index
// outside the list.
double timeStepSeconds(int timeStepIndex);

}  // namespace nocturnel
