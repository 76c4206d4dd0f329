#pragma once

namespace EDITOR {

// The editor's interface project (editorInterface.xml), compiled in so that the program
// needs no file beside it.
const char* editorInterfaceProject();

}  // namespace EDITOR
