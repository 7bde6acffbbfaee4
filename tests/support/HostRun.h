// The sample host run as a user runs it, its two streams caught apart.
#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "support/TempDir.h"

struct HostRun {
    int status;
    std::string out;  // standard output
    std::string err;  // standard error
};

// Runs the host with `arguments` (a shell's words) and the variables of `environment`
// ("NAME=VALUE ..."), through `launcher` (a command that runs the next words) when one is given;
// the streams go through files named after `scratch`, which are removed.
inline HostRun runHost(const std::string& arguments, const std::string& scratch, const std::string& environment = "",
                       const std::string& launcher = "") {
    std::string out = scratch + ".out", err = scratch + ".err";
    std::string command = (environment.empty() ? "" : "env " + environment + " ") +
                          (launcher.empty() ? "" : launcher + " ") + MODELBRIDGE_GEN_PATH + " " + arguments + " >" +
                          out + " 2>" + err;
    int status = std::system(command.c_str());
    HostRun result{WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile(out), readFile(err)};
    std::remove(out.c_str());
    std::remove(err.c_str());
    return result;
}
