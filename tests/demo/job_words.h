#pragma once

#include <algorithm>

#include "titration.h"

inline std::vector<std::string> Sorted(std::vector<std::string> words) {
    std::ranges::sort(words);
    return words;
}

inline std::vector<std::string> WordsOfJob(const CString& path) {
    CQelPrintJobQueueData job;
    EXPECT_EQ(job.LoadJobFile(path), 1);
    std::string texts;
    for (CQelPrintJobCommand command; job.GetBlock().GetNextCommand(command) != 0;) {
        if (command.GetKind() == CQelPrintJobCommand::kText) texts += std::string(command.GetText()) + " ";
    }
    return Sorted(Words(texts));
}
