// SPDX-License-Identifier: MIT
// An X session manager for one client, ended by its own command: prints its address, then what
// the client tells about its restart; "logout" on standard input ends the session.
#include <X11/ICE/ICElib.h>
#include <X11/SM/SMlib.h>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <string>
#include <unistd.h>
#include <vector>

// Exported by the library for session managers, but in none of its headers.
extern "C" int _IceTransNoListen(const char* protocol);

namespace {

SmsConn client = nullptr;
IceConn connection = nullptr;
bool isLoggingOut = false;

void print(const std::string& line) {
    std::puts(line.c_str());
    std::fflush(stdout);
}

Status registered(SmsConn conn, SmPointer, char* previousId) {
    client = conn;
    SmsRegisterClientReply(conn, SmsGenerateClientID(conn));
    std::free(previousId);
    // Every new client is asked to save itself once.
    SmsSaveYourself(conn, SmSaveLocal, False, SmInteractStyleNone, False);
    return 1;
}

void saved(SmsConn conn, SmPointer, Bool) {
    if (isLoggingOut) {
        SmsDie(conn);
    } else {
        SmsSaveComplete(conn);
        print("registered");
    }
}

void propertiesSet(SmsConn, SmPointer, int count, SmProp** properties) {
    for (int i = 0; i < count; ++i) {
        const SmProp& property = *properties[i];
        if (std::strcmp(property.name, SmRestartStyleHint) == 0 && property.num_vals == 1) {
            const auto hint = *static_cast<const char*>(property.vals[0].value);
            print("restart " + std::to_string(static_cast<int>(hint)));
        }
        SmFreeProperty(properties[i]);
    }
    std::free(properties);
}

void closed(SmsConn conn, SmPointer, int count, char** reasons) {
    SmFreeReasons(count, reasons);
    SmsCleanUp(conn);
    IceSetShutdownNegotiation(connection, False);
    IceCloseConnection(connection);
    connection = nullptr;
    print("closed");
}

Status clientArrived(SmsConn, SmPointer, unsigned long* mask, SmsCallbacks* callbacks, char**) {
    *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask |
            SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask |
            SmsSaveYourselfDoneProcMask | SmsCloseConnectionProcMask | SmsSetPropertiesProcMask |
            SmsDeletePropertiesProcMask | SmsGetPropertiesProcMask;
    *callbacks = {};
    callbacks->register_client.callback = registered;
    callbacks->interact_request.callback = [](SmsConn conn, SmPointer, int) { SmsInteract(conn); };
    callbacks->interact_done.callback = [](SmsConn, SmPointer, Bool) {};
    callbacks->save_yourself_request.callback = [](SmsConn, SmPointer, int, Bool, int, Bool, Bool) {
    };
    callbacks->save_yourself_phase2_request.callback = [](SmsConn conn, SmPointer) {
        SmsSaveYourselfPhase2(conn);
    };
    callbacks->save_yourself_done.callback = saved;
    callbacks->close_connection.callback = closed;
    callbacks->set_properties.callback = propertiesSet;
    callbacks->delete_properties.callback = [](SmsConn, SmPointer, int, char**) {};
    callbacks->get_properties.callback = [](SmsConn conn, SmPointer) {
        SmsReturnProperties(conn, 0, nullptr);
    };
    return 1;
}

/// Accepts every client: only this user's programs can reach the socket.
Bool everybody(char*) {
    return True;
}

int run() {
    char error[256] = "";
    int count = 0;
    IceListenObj* listeners = nullptr;
    _IceTransNoListen("tcp");
    if (!SmsInitialize("tests", "1", clientArrived, nullptr, everybody, sizeof error, error) ||
        !IceListenForConnections(&count, &listeners, sizeof error, error)) {
        std::fprintf(stderr, "%s\n", error);
        return EXIT_FAILURE;
    }
    IceSetIOErrorHandler([](IceConn) { connection = nullptr; });
    for (int i = 0; i < count; ++i) {
        IceSetHostBasedAuthProc(listeners[i], everybody);
    }
    print(IceComposeNetworkIdList(count, listeners));
    for (bool isOpen = true; isOpen;) {
        std::vector<pollfd> files = {{STDIN_FILENO, POLLIN, 0}};
        for (int i = 0; i < count; ++i) {
            files.push_back({IceGetListenConnectionNumber(listeners[i]), POLLIN, 0});
        }
        if (connection != nullptr) {
            files.push_back({IceConnectionNumber(connection), POLLIN, 0});
        }
        if (::poll(files.data(), files.size(), -1) < 0) {
            break;
        }
        for (int i = 0; i < count && connection == nullptr; ++i) {
            if (files[static_cast<std::size_t>(i) + 1].revents != 0) {
                IceAcceptStatus status = IceAcceptFailure;
                connection = IceAcceptConnection(listeners[i], &status);
            }
        }
        if (connection != nullptr && files.size() > static_cast<std::size_t>(count) + 1 &&
            files.back().revents != 0) {
            IceProcessMessages(connection, nullptr, nullptr);
        }
        if (files.front().revents != 0) {
            char line[64] = "";
            isOpen = ::read(STDIN_FILENO, line, sizeof line - 1) > 0;
            if (isOpen && client != nullptr) {
                isLoggingOut = true;
                SmsSaveYourself(client, SmSaveBoth, True, SmInteractStyleAny, False);
            }
        }
    }
    // Takes the socket away.
    IceFreeListenObjs(count, listeners);
    return EXIT_SUCCESS;
}

}  // namespace

int main() {
    return run();
}
