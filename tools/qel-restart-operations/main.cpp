// Carries out the moves and deletions that programs have delayed to the next start of the system, for the user who runs
// it: root's at the start, another's at the start of a session. What cannot be done is reported and removed.
//
//     qel-restart-operations           carry out what earlier starts have requested
//     qel-restart-operations --list    show what is waiting
//
// Exit code 0; 1 when the queue cannot be read or written, 2 for wrong arguments.
#include <cstdio>
#include <cstring>

#include "qellib10/platform/restart/restart_queue.h"
#include "qellib10/platform/storage/file_exception.h"

namespace {

void Report(const qel::RestartOperation& operation, int error) {
    if (operation.target.empty()) {
        std::fprintf(stderr, "cannot delete %s: %s\n", operation.source.c_str(), std::strerror(error));
    } else {
        std::fprintf(stderr, "cannot move %s to %s: %s\n", operation.source.c_str(), operation.target.c_str(),
                     std::strerror(error));
    }
}

void List(const qel::RestartQueue& queue) {
    for (const qel::RestartOperation& operation : queue.Waiting()) {
        if (operation.target.empty()) {
            std::printf("delete %s\n", operation.source.c_str());
        } else {
            std::printf("move %s to %s\n", operation.source.c_str(), operation.target.c_str());
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    const bool list = argc == 2 && std::strcmp(argv[1], "--list") == 0;
    if (argc != 1 && !list) {
        std::fprintf(stderr, "usage: qel-restart-operations [--list]\n");
        return 2;
    }
    try {
        qel::RestartQueue queue = qel::RestartQueue::OfUser();
        if (list) {
            List(queue);
        } else {
            queue.Run(Report);
        }
        return 0;
    } catch (const CFileException& error) {
        std::fprintf(stderr, "%s: %s\n", static_cast<const char*>(error.m_strFileName), error.what());
        return 1;
    }
}
