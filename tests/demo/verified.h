#pragma once

#include <functional>

#include "titration.h"

using Damage = std::function<void(std::string&)>;
inline Damage Flip(std::size_t at) {
    return [at](std::string& bytes) { bytes.at(at) ^= 1; };
}
inline Damage FlipIn(const char* text) {
    return [text](std::string& bytes) { bytes.at(bytes.find(text)) ^= 1; };
}
inline Damage Cut(std::size_t left) {
    return [left](std::string& bytes) { bytes.resize(left); };
}
inline Damage Append(const char* text) {
    return [text](std::string& bytes) { bytes += text; };
}

/// A folder "results" of two titrations; the first was taken out, both are printed.
class Verified : public Titration {
protected:
    Verified() {
        static const Made made;
        for (const char* folder : {"results", "results.installation"})
            std::filesystem::copy(made.Path(folder), Path(folder), std::filesystem::copy_options::recursive);
    }

    Outcome Verify() const { return Run("--verify --out results"); }

    /// Each damage of a file, one after the other, is found. Without a damage the file is missing.
    /// @param atOnce changes other files to fit the damaged one, and back
    void ExpectFound(
        const Cases<std::string, Damage, std::string>& cases,
        const std::function<void(const std::string& name)>& atOnce = [](const std::string&) {}) const {
        for (const auto& [name, damage, finding] : cases) {
            const std::string file = "results/" + name, before = m_folder.Read(file);
            std::string bytes = before;
            if (damage) damage(bytes);
            damage ? m_folder.Write(file, bytes) : static_cast<void>(std::filesystem::remove(m_folder.Posix(file)));
            atOnce(name);
            const Outcome run = Verify();
            EXPECT_NE(run.out.find(finding), std::string::npos) << finding << "\n" << run.out;
            EXPECT_EQ(run.status, 1) << finding;
            m_folder.Write(file, before);
        }
    }

private:
    struct Made : TitrationProgram {
        Made() {
            for (const std::string& arguments :
                 {std::string(kVinegar), std::string(kVinegar), std::string("--take-out 1 --out results"),
                  std::string("--print 2 --out results")})
                EXPECT_EQ(Run(arguments).status, 0) << arguments;
        }
    };
};
