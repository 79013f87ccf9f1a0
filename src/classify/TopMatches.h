// The one or two best folders met so far, whatever the order in which they are met.
#pragma once

#include <cstddef>

#include "classify/CandidateIndex.h"

namespace kinsort {

class TopMatches {
  public:
    enum class Keep { kBest, kBestTwo };
    explicit TopMatches(Keep keep = Keep::kBest) : keep_(keep) {}

    // Each folder is offered once, with a score of 1 or more.
    void Offer(CandidateMatch match) {
        if (Beats(match, pair_.best)) {
            pair_.runnerUp = pair_.best;
            pair_.best = match;
        } else if (keep_ == Keep::kBestTwo && Beats(match, pair_.runnerUp)) {
            pair_.runnerUp = match;
        }
    }

    // The smallest score with which `folder` would still change something.
    int WantedOf(size_t folder) const {
        const CandidateMatch& bar = Bar();
        return bar.score + (static_cast<int>(folder) > bar.folder ? 1 : 0);
    }

    // The match that the next one has to beat; folder -1 when there is none yet.
    const CandidateMatch& Bar() const { return keep_ == Keep::kBest ? pair_.best : pair_.runnerUp; }
    const CandidatePair& Pair() const { return pair_; }

  private:
    static bool Beats(const CandidateMatch& a, const CandidateMatch& b) {
        return a.score > b.score || (a.score == b.score && a.folder < b.folder);
    }

    CandidatePair pair_;
    Keep keep_;
};

}  // namespace kinsort
