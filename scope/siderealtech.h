#pragma once
// SiderealTech (drive code 18, 19200 baud). Its protocol is not implemented yet: every
// operation tells the user so ("SiderealTech is not supported yet") and fails (0), so the
// dispatch keeps its place and messages for this drive.
namespace nocturnel {

inline constexpr int kSiderealTechBaud = 19200;

int siderealTechConnect();
int siderealTechDisconnect();
int siderealTechReadRaDec(double& raHours, double& decDeg);
int siderealTechReadEncoders(double& azDeg, double& altDeg);
int siderealTechGoto(double raHours, double decDeg);
int siderealTechSync(double raHours, double decDeg);
int siderealTechSetRate(int rate);
int siderealTechStartMove(int direction);
int siderealTechStopMove(int direction);
int siderealTechStopAll();

}  // namespace nocturnel
