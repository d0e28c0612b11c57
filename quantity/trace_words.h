#pragma once

#include <string_view>

#include "qellib10/quantity/trace.h"

namespace qel {

/// The words of a trace's tables.
enum class TraceWord {
    kResult,
    kFormula,
    kHelper,
    kInputs,
    kSteps,
    kRounding,
    kBudget,
    kFault,
    kName,
    kValue,
    kUnit,
    kOrigin,
    kUncertaintyStated,
    kStep,
    kOperation,
    kRemark,
    kInexact,
    kFromBinary,
    kRoundedByList,
    kRule,
    kUnrounded,
    kRounded,
    kNoRounding,
    kSubstitution,
    kSource,
    kStandardUncertainty,
    kDegreesOfFreedom,
    kSensitivity,
    kContribution,
    kShare,
    kCombined,
    kCoverage,
    kExpanded,
    kInfinite,
    kNotDefined,
    kBecauseOf,
    kAtKink,
    kEngine,
    kOlderGrammar,
    kLimits,
    kLower,
    kUpper,
    kCompared,
    kComparedRounded,
    kComparedUnrounded,
    kGuardBand,
    kConformity,
    kPassed,
    kFailed,
    kUndecided,
    kOnBothSides,
    kLimitRounding,
    kTrials,
    kFirstOrder,
    kEnough,
    kNotEnough,
    kMoreTrials,
    kNumberOfTrials,
    kFailedTrials,
    kSeed,
    kShortest,
    kCorrelations,
    kCoefficient,
    kTooSmall,
};

std::string_view TextOf(TraceWord word, TraceLanguage language);

}  // namespace qel
