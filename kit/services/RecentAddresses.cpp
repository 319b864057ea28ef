#include "services/RecentAddresses.h"

namespace ombrel {

void RecentAddresses::add(const FileURL& place) {
    std::erase(places_, place);
    places_.insert(places_.begin(), place);
    if (places_.size() > most) places_.pop_back();
}

} // namespace ombrel
