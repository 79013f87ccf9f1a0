// Carrying out a batch for the dialog.
#pragma once

#include <cstdint>
#include <vector>

#include "fileop/FileOperation.h"

namespace kinsort {

class OperationRunner {
  public:
    virtual ~OperationRunner() = default;

    // Runs the items as one batch and returns when it is over and the user has seen what there is to see. `flags`:
    // kFof... bits.
    virtual void CarryOut(std::vector<ItemRequest> items, uint32_t flags) = 0;
    // Offers to take the batch back that was carried out last, if something of it was done and the user was not asked
    // already; returns when that was answered or the offer is over.
    virtual void OfferUndo() = 0;
    // Asks about each batch that was torn by a crash: finish, take back, leave.
    virtual void OfferRecovery() = 0;
};

}  // namespace kinsort
