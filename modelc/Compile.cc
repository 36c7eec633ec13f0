#include <modelc/Compile.h>

#include <exception>

#include <modelc/check/Check.h>
#include <modelc/check/Model.h>
#include <modelc/emit/Emit.h>
#include <modelc/emit/Registrations.h>

namespace Modelc {
namespace {

Compilation run(std::vector<Description> const& descriptions, ImportReader const& reader) {
    Compilation result;
    Diagnostics diagnostics;
    Sources sources(diagnostics, reader);
    for (Description const& one : descriptions) sources.add(one.name, one.text);
    Model model;
    check(sources, model, diagnostics);
    result.errors = diagnostics.lines();
    if (!result.errors.empty()) return result;
    std::vector<SourceFile const*> const files = sources.ordered();
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (!files[i]->isEmitted) continue;
        for (OutputFile& file : emit(model.units[i])) result.files.push_back(std::move(file));
        result.registrations += registrationText(model.units[i]);
    }
    return result;
}

}  // namespace

Compilation compile(std::vector<Description> const& descriptions, ImportReader const& reader) {
    try {
        return run(descriptions, reader);
    } catch (std::exception const& failure) {
        Compilation result;
        result.errors.push_back(std::string("modelc: error: ") + failure.what() +
                                "; expected no failure");
        return result;
    }
}

Compilation compile(std::string_view text, std::string_view name) {
    auto const nothing = [](std::string const&, std::string const&) {
        return std::optional<ImportedText>();
    };
    return compile({{std::string(name), std::string(text)}}, nothing);
}

}  // namespace Modelc
