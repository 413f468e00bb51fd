// nocturnel list, memo and usercat: the current selection list saved and loaded by name,
// exchanged as memo text, and the user's own catalogue imported from CSV.
#include <cstring>
#include <iostream>
#include <memory>
#include <string>

#include "catalog/object_finder.h"
#include "catalog/object_tables.h"
#include "plans/selection_run.h"
#include "plans/user_catalog.h"
#include "plans/user_lists.h"
#include "settings/message.h"
#include "settings/program_folder.h"
#include "settings/text_encoding.h"
#include "shell/app.h"
#include "shell/commands.h"
#include "shell/roam_session.h"
#include "shell/selection_hooks.h"
#include "shell/selection_json.h"

namespace nocturnel {
namespace {

template <typename Body>
void run(Body body) {
    if (!startUp() || !body()) setExitCode(1);
}

std::optional<std::string> latin1Name(const std::string& utf8) {
    auto latin1 = utf8ToLatin1(utf8);
    if (!latin1) showMessage("Invalid name", "The text holds characters that cannot be stored.");
    return latin1;
}

void show(const SelectionList& list) {
    if (globalOptions().json) {
        std::cout << selectionJson(list, {}).dump(2) << "\n";
        return;
    }
    for (std::size_t i = 0; i < list.items.size(); ++i) std::cout << selectionLine(list.items[i], static_cast<int>(i)) << "\n";
    if (list.items.empty()) std::cout << "The selection list is empty.\n";
}

}  // namespace

void registerListCommands(CLI::App& app) {
    CLI::App* list = app.add_subcommand("list", "The current selection list and the saved lists in userlists/");
    list->require_subcommand(1);
    list->add_subcommand("ls", "The saved lists: \"name, count\"")->callback([] {
        run([] {
            const auto lines = listPicker();
            if (globalOptions().json) {
                std::cout << listPickerJson().dump(2) << "\n";
            } else {
                std::cout << kNewListName << "\n";
                for (const auto& l : lines) std::cout << latin1ToUtf8(l.line) << "\n";
            }
            return true;
        });
    });
    list->add_subcommand("show", "The current selection list")->callback([] {
        run([] {
            CurrentList c;
            if (!c.load()) return false;
            show(c.list);
            return true;
        });
    });
    auto name = std::make_shared<std::string>();
    CLI::App* save = list->add_subcommand("save", "Save the current list as userlists/NAME.lst");
    save->add_option("name", *name, "List name")->required();
    save->callback([name] {
        run([name] {
            CurrentList c;
            const auto latin1 = latin1Name(*name);
            if (!latin1 || !c.load() || !saveUserList(*latin1, c.list, prefs().selection)) return false;
            std::cout << "Saved " << c.list.items.size() << " objects as " << *name << "\n";
            return true;
        });
    });
    auto loadName = std::make_shared<std::string>();
    auto userCatalogMode = std::make_shared<bool>(false);
    CLI::App* load = list->add_subcommand("load", "Make userlists/NAME.lst the current list");
    load->add_option("name", *loadName, "List name")->required();
    load->add_flag("--user-catalog", *userCatalogMode,
                   "Use NAME as the user catalogue (usercatalogs/NAME) and rebuild the list from it");
    load->callback([loadName, userCatalogMode] {
        run([loadName, userCatalogMode] {
            CurrentList c;
            const auto latin1 = latin1Name(*loadName);
            if (!latin1 || !c.load()) return false;
            if (*userCatalogMode) {
                copyFixedText(prefs().userCatalogFile, latin1->c_str());
                SelectionCriteria criteria = prefs().selection;
                criteria.catalogFilter = kCatalogUser;
                SelectionRunHooks hooks = selectionHooksFor(criteria, {});
                runSelection(criteria, hooks, c.list);
            } else if (!loadUserList(*latin1, c.list, prefs().selection)) {
                return false;
            }
            if (!c.save() || !CurrentList::saveCriteria()) return false;
            show(c.list);
            return true;
        });
    });
    auto addName = std::make_shared<std::string>();
    CLI::App* add = list->add_subcommand("add", "Add an object by name to the current list");
    add->add_option("name", *addName, "Object name (\"M 42\", \"NGC 7000\", \"HIP 91262\")")->required();
    add->callback([addName] {
        run([addName] {
            CurrentList c;
            FoundObject found;
            if (!c.load() || !findObjectByName(*addName, found)) return false;
            const ObjectReference ref = referenceOf(found);
            if (c.list.contains(ref)) {
                showMessage("Already loaded:", *addName);
                return false;
            }
            if (c.list.full()) {
                showMessage("The selection list is full", std::to_string(c.list.capacity) + " objects");
                return false;
            }
            c.list.items.push_back(ref);
            if (!c.save()) return false;
            show(c.list);
            return true;
        });
    });
    auto removeName = std::make_shared<std::string>();
    CLI::App* remove = list->add_subcommand("remove", "Remove an object by name from the current list");
    remove->add_option("name", *removeName, "Object name")->required();
    remove->callback([removeName] {
        run([removeName] {
            CurrentList c;
            FoundObject found;
            if (!c.load() || !findObjectByName(*removeName, found)) return false;
            const ObjectReference ref = referenceOf(found);
            const auto before = c.list.items.size();
            std::erase_if(c.list.items, [&](const ObjectReference& item) { return sameObject(item, ref); });
            if (c.list.items.size() == before) {
                showMessage("Please select at least one object", *removeName + " is not in the list.");
                return false;
            }
            if (!c.save()) return false;
            show(c.list);
            return true;
        });
    });

    CLI::App* memo = app.add_subcommand("memo", "Memo text files in userlists/: one object per line");
    memo->require_subcommand(1);
    memo->add_subcommand("ls", "The memos")->callback([] {
        run([] {
            for (const std::string& m : memoPicker()) std::cout << m << "\n";
            return true;
        });
    });
    auto previewFile = std::make_shared<std::string>();
    CLI::App* preview = memo->add_subcommand("preview", "The first 256 bytes of a memo");
    preview->add_option("file", *previewFile, "Memo file in userlists/")->required();
    preview->callback([previewFile] {
        run([previewFile] {
            std::string text;
            if (!memoPreview(*previewFile, text)) return false;
            std::cout << latin1ToUtf8(text) << "\n";
            return true;
        });
    });
    auto importFile = std::make_shared<std::string>();
    CLI::App* import = memo->add_subcommand("import", "Make a memo's objects the current list");
    import->add_option("file", *importFile, "Memo file in userlists/")->required();
    import->callback([importFile] {
        run([importFile] {
            CurrentList c;
            if (!c.load()) return false;
            const int n = importMemo(*importFile, prefs().moment, c.list, prefs().selection);
            if (!c.save() || !CurrentList::saveCriteria()) return false;
            show(c.list);
            return n >= 0;
        });
    });
    memo->add_subcommand("export", "Write the current list as a memo named from the date and time")->callback([] {
        run([] {
            CurrentList c;
            std::filesystem::path written;
            if (!c.load() || !exportMemo(memoTextOf(c.list), prefs().moment, &written)) return false;
            std::cout << "Written to " << written.string() << "\n";
            return true;
        });
    });

    auto csv = std::make_shared<std::string>();
    CLI::App* usercat = app.add_subcommand("usercat", "The user catalogue in usercatalogs/");
    usercat->require_subcommand(1);
    CLI::App* usercatImport = usercat->add_subcommand("import", "Replace the user catalogue by a CSV file's objects "
                                                                "(name, RA, Dec, type, magnitude, size)");
    usercatImport->add_option("file", *csv, "CSV file")->required();
    usercatImport->callback([csv] {
        run([csv] {
            const int n = importUserCatalogCsv(*csv);
            if (n < 0) return false;
            std::cout << n << " objects in the user catalogue\n";
            return true;
        });
    });
}

}  // namespace nocturnel
