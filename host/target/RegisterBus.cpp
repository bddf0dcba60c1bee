#include "host/target/RegisterBus.h"

namespace etmhost {

Refusal RegisterBus::PreparePort(uint32_t) {
    return "This target offers no preparation of its trace pins";
}

} // namespace etmhost
