#pragma once
// A simulated mount on the far end of a pseudo-terminal. The program opens devicePath() as
// its serial port; every byte it writes arrives here, is handed to the responder, and the
// responder's answer goes back down the line. Used by the protocol tests and by the
// `nocturnel scope simulate` command.
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace nocturnel {

class PtyMount {
public:
    // Consumes what it understands from `pending` (bytes received and not yet answered) and
    // returns the bytes to send back (may be empty). Called on a background thread whenever
    // bytes arrive.
    using Responder = std::function<std::string(std::string& pending)>;

    explicit PtyMount(Responder responder);
    ~PtyMount();  // stops the thread, closes the master
    PtyMount(const PtyMount&) = delete;
    PtyMount& operator=(const PtyMount&) = delete;

    // "/dev/pts/N": give it to the program as the port. Empty when the pty could not be made.
    const std::string& devicePath() const;
    bool isReady() const { return !path_.empty(); }

    std::string received() const;  // every byte received so far (the transcript)
    void clearReceived();
    void setResponder(Responder responder);
    // Sends bytes down the line unasked (a late answer, a GPS sentence). False when closed.
    bool send(const std::string& bytes);
    // Waits (at most timeoutMs) until the transcript ends with `tail` and the answer to it has
    // been written back; false on time-out. For commands whose answer the program never reads.
    bool waitUntilReceived(const std::string& tail, int timeoutMs = 2000) const;

    // The device vanishes (USB unplugged): the thread stops and both ends are closed, so the
    // program's reads see a hang-up and the device path no longer opens.
    void closeNow();

private:
    void run();
    void stopThread();

    int master_ = -1;
    int slave_ = -1;      // held open so the master never sees a hang-up between the program's opens
    int wakeRead_ = -1;   // self-pipe that tells the thread to stop
    int wakeWrite_ = -1;
    std::string path_;
    mutable std::mutex mutex_;
    Responder responder_;
    std::string pending_;
    std::string received_;
    bool answering_ = false;  // a chunk is between its arrival and its written answer
    mutable std::condition_variable changed_;
    std::thread thread_;
};

// Makes the mount's device the telescope port: stores its path in prefs().scopeDevice (so the
// port list offers it last) and its list index in prefs().scopePort. Returns that index, -1
// when the mount has no device.
int selectAsScopePort(const PtyMount& mount);

}  // namespace nocturnel
