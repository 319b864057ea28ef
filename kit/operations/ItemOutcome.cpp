#include "operations/ItemOutcome.h"

#include <utility>

namespace ombrel {

ItemOutcome ItemOutcome::completed(std::optional<FileURL> destination) {
    ItemOutcome outcome(Case::completed);
    outcome.destination_ = std::move(destination);
    return outcome;
}

ItemOutcome ItemOutcome::failed(FileOperationError error) {
    ItemOutcome outcome(Case::failed);
    outcome.error_ = std::move(error);
    return outcome;
}

ItemOutcome ItemOutcome::copiedSourceKept(FileURL destination, FileOperationError reason) {
    ItemOutcome outcome(Case::copiedSourceKept);
    outcome.destination_ = std::move(destination);
    outcome.error_ = std::move(reason);
    return outcome;
}

} // namespace ombrel
