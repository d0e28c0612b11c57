// qel profile: settings in INI files and in the registry.

#include "settings.h"

namespace tool {
namespace {

struct Options {
    std::string location, section, key, value, suffix;
    bool asNumber = false, json = false;
};

CPrivateProfile Opened(const Place& place) {
    return CPrivateProfile(place.location,
                           place.root != nullptr ? CPrivateProfile::registryMode : CPrivateProfile::iniMode);
}

void RequireFitForIni(const std::string& text, const char* unfit) {
    if (text.find_first_of(unfit) != std::string::npos)
        throw CLI::ValidationError("\"" + text + "\" does not fit into an INI file");
}

// There, blanks around names are ignored. The library writes an entry without a name, which only few programs read.
void RequireFitForIni(const Options& options) {
    constexpr const char* kBlanks = " \t\n\v\f\r\x1A";
    const std::size_t keyAt = options.key.find_first_not_of(kBlanks);
    if (keyAt == std::string::npos || options.section.find_first_not_of(kBlanks) == std::string::npos)
        throw CLI::ValidationError("a setting in an INI file has a section and a name");
    if (options.key[keyAt] == ';')
        throw CLI::ValidationError("\"" + options.key + "\" would be a comment in an INI file");
    RequireFitForIni(options.section, "\r\n");
    RequireFitForIni(options.key, "\r\n=");
    RequireFitForIni(options.value, "\r\n");
}

CPrivateProfile KeyToCopy(const Options& options) {
    const Place place = PlaceOf(options.location);
    if (place.root == nullptr) throw CLI::ValidationError("\"" + options.location + "\" is not a key of the registry");
    if (options.suffix[0] == '\\')
        throw CLI::ValidationError("\"" + options.suffix + "\" would name a key below the one that is copied");
    return Opened(place);
}

void Get(const Options& options) {
    const std::optional<Setting> setting = ReadSetting(PlaceOf(options.location), options.section, options.key);
    if (!setting) throw Failure(Shown(options.location) + ": has no such setting");
    options.json ? Print(setting->json) : Print(setting->text + '\n');
}

void Set(const Options& options) {
    const Place place = PlaceOf(options.location);
    if (place.root == nullptr) RequireFitForIni(options);
    CPrivateProfile profile = Opened(place);
    const CString section = ExactText(options.section);
    const CString key = ExactText(options.key);
    int result = 0;
    if (options.asNumber) {
        const auto number = qel::ReadWholeNumber<int>(options.value);
        if (!number) throw CLI::ValidationError("\"" + options.value + "\" is not a whole number");
        result = profile.Set(section, key, *number);
    } else {
        result = profile.Set(section, key, ExactText(options.value));
    }
    if (result == 0) throw Failure(Shown(options.location) + ": " + Why("the setting cannot be written"));
}

void List(const Options& options) {
    const std::vector<Section> sections = ReadSections(PlaceOf(options.location));
    Json json = Json::object();
    std::string text;
    for (const auto& [name, settings] : sections) {
        text += '[' + Shown(name) + "]\n";
        json[name] = Json::object();
        for (const auto& [key, setting] : settings) {
            text += Shown(key) + '=' + Shown(setting.text) + '\n';
            json[name][key] = setting.json;
        }
    }
    options.json ? Print(json) : Print(text);
}

void Backup(const Options& options) {
    if (KeyToCopy(options).Backup(ExactText(options.suffix)) == 0)
        throw Failure(Shown(options.location) + ": cannot be backed up: " + Why("it cannot be read"));
}

void Restore(const Options& options) {
    if (KeyToCopy(options).Restore(ExactText(options.suffix)) == 0)
        throw Failure(Shown(options.location) + ": cannot be restored: " + Why("there is no such backup"));
}

}  // namespace

void AddProfile(CLI::App& app, Status&) {
    CLI::App* const command = app.add_subcommand("profile", "Read and change settings");
    command->require_subcommand(1);
    const auto options = std::make_shared<Options>();
    const auto add = [&](const char* name, const char* meaning, void (*run)(const Options&)) {
        CLI::App* const action = command->add_subcommand(name, meaning);
        action
            ->add_option("LOCATION", options->location, "INI file, or key such as 'HKEY_CURRENT_USER\\Software\\Meter'")
            ->required();
        action->callback([options, run] { run(*options); });
        return action;
    };
    const auto addName = [&](CLI::App* action) {
        action->add_option("SECTION", options->section, "Section; in the registry a key below LOCATION or ''")
            ->required();
        action->add_option("KEY", options->key, "Name of the setting")->required();
    };
    CLI::App* const get = add("get", "Write a setting", Get);
    addName(get);
    CLI::App* const set = add("set", "Change a setting", Set);
    addName(set);
    set->add_option("VALUE", options->value, "Its new value")->required();
    set->add_flag("--number", options->asNumber, "Store it as a number (registry)");
    for (CLI::App* const action : {get, add("list", "List all settings", List)})
        action->add_flag("--json", options->json, "Write JSON");
    for (CLI::App* const action :
         {add("backup", "Copy a key to the key next to it whose name has SUFFIX appended", Backup),
          add("restore", "Put such a copy in place of the key", Restore)})
        action->add_option("SUFFIX", options->suffix, "Such as .bak")->required();
}

}  // namespace tool
