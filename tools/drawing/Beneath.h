// The ground beneath shallow holes.
//
// A trial pit or window sample a few metres deep, standing between two boreholes that reach
// bedrock, says nothing about what lies below its base; yet correlated pair by pair, every unit
// of the deeper holes has to end between them and the pit, so the bedrock of a whole site would
// stop at each pit. Below the base of such holes the section correlates the two deeper holes on
// either side directly, as if the shallow ones were not there, and draws what that infers with
// dashed boundaries; above their bases the pairs of neighbours stand as they are.
#pragma once

#include "Section.h"

#include <cstddef>
#include <vector>

namespace xklink::drawing {

// Two holes, in chainage order, with holes between them that are all shallower than both.
struct BeneathSpan {
  std::size_t from = 0;
  std::size_t to = 0;
};

// Whether `hole` is shallow beside `deeper`: its base stands above deeper's base by more than
// kShallowerBy and by more than kReachFraction of deeper's depth, so that it stops short of the
// lower half of the deeper log. Two boreholes of 35 and 30 m are both deep; a 0.6 m pit or a 6 m
// window sample beside a 25 m borehole is shallow.
bool IsShallowBeside(const SectionHole& hole, const SectionHole& deeper);

// The spans of holes ordered by chainage: each run of consecutive holes that are shallow beside
// both holes that bound the run. The spans do not overlap; a run with no deeper hole on one side
// (at an end of the section) has no span.
std::vector<BeneathSpan> SpansBeneathShallowHoles(const std::vector<SectionHole>& holes);

// 0.5 m: a hole ending a few decimetres above its neighbours has met the same ground.
inline constexpr double kShallowerBy = 0.5;
// A half: a hole that reaches into the lower half of its neighbour's log has seen most of what the
// neighbour has; one that stops above it leaves the deeper units to the neighbours.
inline constexpr double kReachFraction = 0.5;

// The deepest elevation a hole reaches: its lowest stratum bottom, or its collar without strata.
double HoleBase(const SectionHole& hole);

} // namespace xklink::drawing
