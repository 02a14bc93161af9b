// SPDX-License-Identifier: MIT
// line SERVER [PORT [MICROSECONDS]]: a line to a server (127.0.0.1:5432, or the path of a local
// socket) that a shell can break. Prints its port, and runs until SIGTERM. SIGUSR1 breaks every
// connection; SIGUSR2 does, and refuses new ones until the next SIGUSR2. What goes through it is
// under way for so many microseconds in either direction.
#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <string>

#include "tests/support/line_proxy.hpp"

int main(int argc, char** argv) {
  if (argc < 2 || argc > 4) {
    std::fputs("usage: line SERVER [PORT [MICROSECONDS]]\n", stderr);
    return 2;
  }
  sigset_t signals;
  sigemptyset(&signals);
  for (const int each : {SIGUSR1, SIGUSR2, SIGTERM, SIGINT}) sigaddset(&signals, each);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);  // for the threads of the line too
  try {
    tavelor::test::LineProxy line(argv[1], argc > 2 ? std::stoi(argv[2]) : 0);
    if (argc > 3) line.delayBy(std::chrono::microseconds(std::stoi(argv[3])));
    std::printf("%d\n", line.port());
    std::fflush(stdout);
    bool isDown = false;
    for (int signal = 0; sigwait(&signals, &signal) == 0;) {
      if (signal == SIGUSR1) {
        line.cut();
      } else if (signal == SIGUSR2) {
        isDown = !isDown;
        if (isDown) {
          line.down();
        } else {
          line.up();
        }
      } else {
        return 0;
      }
    }
  } catch (const std::exception& error) {
    std::fprintf(stderr, "line: %s\n", error.what());
    return 1;
  }
}
