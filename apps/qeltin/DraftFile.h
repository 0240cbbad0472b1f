#pragma once

#include <memory>
#include <string>
#include <vector>

#include "apps/qeltin/Interrupt.h"

namespace qeltin::cli {

// A file that is made in a folder of its own beside its final name, and takes that name only when
// it is whole. Until Commit nothing stands under the name but what stood there before; whatever
// ends the command early, a signal included, removes the folder.
//
// A symbolic link is followed: what it points at is replaced, and the link stays. A file that is
// replaced hands its permissions on, and one that may not be written is refused.
//
// A file may have side files: its name with other endings, all in one folder. They come and go with
// it: none is left of a file that is replaced, and none appears where the file itself does not.
class DraftFile {
 public:
  // Makes the folder. `sides` are the endings of side files, as ".dbf". Throws Failure where the
  // file or a side file exists and `overwrite` is false, where one is no ordinary file, and where
  // the folder is missing or cannot be written to.
  DraftFile(std::string name, bool overwrite, std::vector<std::string> sides = {});

  // Where the content is to be written: a name with the same ending.
  std::string const& WorkingName() const { return m_WorkingName; }

  // The same for a side file. Not every one needs to be written.
  std::string WorkingSide(std::string const& ending) const;

  // Sees to it that the content of the working file is on the disk. Throws Failure.
  void Sync() const;

  // Gives the working files their final names. Throws Failure; also where the file has come into
  // being meanwhile and was not to be overwritten.
  void Commit();

 private:
  // A folder that goes with its content.
  class Folder {
   public:
    explicit Folder(std::string name) : m_Name(std::move(name)), m_Undo([this] { Remove(); }) {}
    ~Folder() { Remove(); }
    std::string const& Name() const { return m_Name; }

   private:
    void Remove() const;

    std::string m_Name;
    UndoOnInterrupt m_Undo;
  };

  // Returns the system's error number, or 0.
  int MoveMain() const;

  std::string m_Name;    // as the caller gave it: what messages say
  std::string m_Target;  // with links followed
  bool m_bOverwrite;
  std::vector<std::string> m_Sides;
  std::unique_ptr<Folder> m_pFolder;
  std::string m_WorkingName;
};

// Returns true iff `name` is there and is no ordinary file and no folder: a device or a pipe. Text
// goes straight into such a thing.
bool IsDevice(std::string const& name);

}  // namespace qeltin::cli
