#include "scope/siderealtech.h"

#include "settings/message.h"

namespace nocturnel {

namespace {
int notSupported() {
    showMessage("SiderealTech is not supported yet");
    return 0;
}
}  // namespace

int siderealTechConnect() { return notSupported(); }
int siderealTechDisconnect() { return notSupported(); }
int siderealTechReadRaDec(double&, double&) { return notSupported(); }
int siderealTechReadEncoders(double&, double&) { return notSupported(); }
int siderealTechGoto(double, double) { return notSupported(); }
int siderealTechSync(double, double) { return notSupported(); }
int siderealTechSetRate(int) { return notSupported(); }
int siderealTechStartMove(int) { return notSupported(); }
int siderealTechStopMove(int) { return notSupported(); }
int siderealTechStopAll() { return notSupported(); }

}  // namespace nocturnel
