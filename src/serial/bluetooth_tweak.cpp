#include "serial/bluetooth_tweak.h"

#include "base/record.h"
#include "serial/registry_key.h"

namespace kavrel {

void BluetoothAutoConnectTweak(RegistryStore& registry, std::int32_t portNumber, bool beforeOpen,
                               bool skip, bool browserOff) {
    constexpr std::int32_t kAutoConnectPort = 8;
    if (portNumber != kAutoConnectPort || skip) return;

    const Ref<RegistryKey> settings = RegistryKey::LocalMachine(registry)->OpenSubkey(
        u"\\SOFTWARE\\Widcomm\\BtConfig\\Autoconnect\\0008");
    if (settings) settings->SetInteger(u"BtBrowserEnabled", beforeOpen && browserOff ? 0 : 1);
}

}  // namespace kavrel
