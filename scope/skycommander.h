#pragma once
// SkyCommander (drive code 19, 9600 baud on the scope port of the preferences): a
// setting-circle computer that reports where the telescope points and takes a target.
// Results follow the program's convention: 1 success, 0 failure, with a message shown.
// A failed position read shows "Failed to get SkyCommander RA and Dec." (a failed send
// "Fail to send string", and the port is closed).
namespace nocturnel {

int skyCommanderConnect();
int skyCommanderDisconnect();
// First coordinate (right ascension) and second (declination), as the device reports them.
int skyCommanderReadPosition(double& first, double& second);
// Sends the target (right ascension first) and checks the device's 'A' acknowledgement.
int skyCommanderSetTarget(double first, double second);

}  // namespace nocturnel
