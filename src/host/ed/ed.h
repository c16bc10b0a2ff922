// The command line: commands in groups, prompts, selection sets. All user input goes through one
// input port, so that a script, a test and a window drive the same code.
#pragma once

#include "host/db/errors.h"
#include "host/db/object_id.h"

#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class AcGeMatrix3d;

using AcRxFunctionPtr = void (*)();

enum AcRxCommandFlags { ACRX_CMD_MODAL = 0, ACRX_CMD_TRANSPARENT = 1 };

struct AcEdCommand {
    std::string group, global_name, local_name;
    int flags = 0;
    AcRxFunctionPtr function = nullptr;
};

/// The commands of all loaded modules.
class AcEdCommandStack {
public:
    /// False when the group has the name already.
    bool addCommand(const std::string& group, const std::string& global_name,
                    const std::string& local_name, int flags, AcRxFunctionPtr function);
    bool removeGroup(const std::string& group);
    /// By local or global name, a leading underscore ignored, without case; the last group wins.
    const AcEdCommand* lookup(const std::string& name) const;
    const std::vector<AcEdCommand>& commands() const { return commands_; }

private:
    std::vector<AcEdCommand> commands_;
};
AcEdCommandStack& acedRegCmds();

/// Where input comes from and output goes to.
class AcEdInputPort {
public:
    virtual ~AcEdInputPort() = default;
    /// One line as the user ends it, shown `prompt`; none at the end of input.
    virtual std::optional<std::string> readLine(const std::string& prompt) = 0;
    virtual void write(const std::string& text) = 0;
    /// What a program with windows would show in a box that wants no answer but OK.
    virtual void alert(const std::string& text) { write("\n" + text + "\n"); }
};
/// The default port reads nothing and drops output. The old port is returned.
AcEdInputPort* acedSetInputPort(AcEdInputPort* port);

/// Results of prompts.
enum AcEdResult { RTNORM = 5100, RTERROR = -5001, RTCAN = -5002, RTNONE = 5000 };

/// Writes to the command line.
void acutPrintf(const std::string& text);
/// Tells the user something that must not be missed.
void acedAlert(const std::string& text);
/// Queues words, as if typed on the running command's line.
void acedPushInput(std::vector<std::string> words);
/// The next queued word, if any: what was typed behind the command's name.
std::optional<std::string> acedTakePendingInput();
/// A line of text; at most `max_length` characters. RTNONE for an empty answer.
int acedGetString(const std::string& prompt, std::string& result, std::size_t max_length = 512);
int acedGetInt(const std::string& prompt, int& result);
/// One of `keywords` (blank-separated; capitals abbreviate, or what stands behind a comma);
/// RTNONE for an empty answer.
int acedGetKword(const std::string& keywords, const std::string& prompt, std::string& result);
void acedPostCommandPrompt();

/// The coordinate system that points are typed in, as a matrix to the world. It is the world's
/// for every drawing to begin with: the one that a file holds is not taken.
void acedGetCurrentUCS(AcGeMatrix3d& matrix);
/// eInvalidInput for a matrix that has no inverse.
Acad::ErrorStatus acedSetCurrentUCS(const AcGeMatrix3d& matrix);

/// Runs a command line: the name, then words that answer its prompts. False for an unknown
/// command; an exception that leaves the command is caught and told at the command line.
bool acedCommand(const std::string& line);

/// A selection set.
class AcEdSelectionSet {
public:
    std::size_t length() const { return ids_.size(); }
    AcDbObjectId at(std::size_t index) const;
    std::vector<AcDbObjectId>& ids() { return ids_; }

private:
    std::vector<AcDbObjectId> ids_;
};
/// Mode "_A": all entities of the current drawing's model space. RTERROR when nothing is selected.
int acedSSGet(const std::string& mode, AcEdSelectionSet& set);

AcDbObjectId acedActiveViewportId();
/// The host's main window, 0 without one; its title is empty then.
std::uintptr_t adsw_acadMainWnd();
std::string acedMainWindowTitle();
/// Who shows the host's main window tells it, and takes it away with 0.
void acedSetMainWindow(std::uintptr_t window, std::string title);
/// True asks the running command to stop: the user pressed the interrupt key. It stays set until
/// whoever runs commands takes it back; setting it is safe in a signal handler after a first call.
bool acedUsrBrk();
void acedSetUsrBrk(bool set);
/// Forgets commands, reactors, pending words, the port and the break, and closes all documents.
void acedReset();

/// Follows commands.
class AcEditorReactor {
public:
    virtual ~AcEditorReactor() = default;
    virtual void commandWillStart(const std::string&) {}
    virtual void commandEnded(const std::string&) {}
    virtual void commandFailed(const std::string&) {}
    virtual void beginSave(AcDbDatabase*, const std::string& /*intended_name*/) {}
    virtual void saveComplete(AcDbDatabase*, const std::string& /*actual_name*/) {}
};
void acedAddReactor(AcEditorReactor* reactor);
void acedRemoveReactor(AcEditorReactor* reactor);

/// Saves a drawing under a name that becomes its own, and tells the reactors before and after.
/// As dxfOut: eFileAccessErr with `error` in words, and the old name stays.
Acad::ErrorStatus acedSaveAs(AcDbDatabase& database, const std::filesystem::path& path,
                             std::string& error);
