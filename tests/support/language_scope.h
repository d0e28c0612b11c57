#pragma once

#include "qellib10/platform/text/string_table.h"

/// Sets the language of table texts for the length of a scope.
class LanguageScope {
public:
    explicit LanguageScope(qel::Language language) : m_previous(qel::TableLanguage()) {
        qel::SetTableLanguage(language);
    }
    ~LanguageScope() { qel::SetTableLanguage(m_previous); }
    LanguageScope(const LanguageScope&) = delete;
    LanguageScope& operator=(const LanguageScope&) = delete;

private:
    qel::Language m_previous;
};
