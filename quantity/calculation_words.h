#pragma once

#include <array>

#include "qellib10/quantity/name_table.h"
#include "qellib10/quantity/uncertainty.h"

namespace qel {

// The words of a calculation's JSON, for writer and reader.
constexpr std::array kDistributionWords = {
    Named{UncertaintyComponent::Distribution::kNormal, "normal"},
    Named{UncertaintyComponent::Distribution::kRectangular, "rectangular"},
    Named{UncertaintyComponent::Distribution::kTriangular, "triangular"},
};
constexpr std::array kEvaluationWords = {
    Named{UncertaintyComponent::Evaluation::kReadings, "readings"},
    Named{UncertaintyComponent::Evaluation::kStandard, "standard uncertainty"},
    Named{UncertaintyComponent::Evaluation::kHalfWidth, "half-width"},
    Named{UncertaintyComponent::Evaluation::kCertificate, "certificate"},
};
constexpr const char* kInfiniteWord = "infinite";
constexpr const char* kRoundedWord = "rounded value";
constexpr const char* kUnroundedWord = "unrounded value";

}  // namespace qel
