// SPDX-License-Identifier: MIT
// The dialogs and the help launcher that the Windows library exports, undecorated; the Linux library has none
// of them. Beside the conventions of QXTypes.h:
//  1. A dialog is modal: the call returns when the user has closed it, and dispatches the calling thread's
//     messages until then. Show one dialog at a time: part of their state is module-wide.
//  2. Texts are in the system's ANSI code page.
//  3. A path list is one block of `count` + 1 entries of QX_PATH_SIZE bytes; entry i begins at byte
//     i * QX_PATH_SIZE and holds a zero-terminated path, the last entry is spare.
//  4. A dialog object is the library's: whoever got one gives it to DoFreeDirFileDialog, also after a cancel.
//     It is written when the dialog is over, null until then.
#pragma once

#include "QXTypes.h"

// Size of a path buffer and of an entry of a path list, with the terminator.
#define QX_PATH_SIZE 256

// Size of the buffer of QXSelectFolder, with the terminator.
#define QX_FOLDER_SIZE 261

#if defined(__cplusplus)
extern "C" {
#endif

// The system's file-open dialog. 1 when the user confirmed it.
//   pReserved1..3  not used, but null makes the call fail and write nothing
//   pszPath        in: the initial file name. Out, when confirmed: the folder without a separator at its end
//                  ("C:\" becomes "C:"). QX_PATH_SIZE bytes.
//   pUnused        not read
//   nFlags         option flags of the system's dialog (OFN_...)
//   ppPathList     out, when confirmed: the folder and, behind a backslash, what the walk over the selection
//                  yields for each item; that is the item's full path, so the folder stands twice. The list
//                  stays valid after DoFreeDirFileDialog; the library never frees it.
//   pnCount        out: number of entries, 0 unless confirmed. Null: the call fails and writes nothing.
//   ppDialog       out: the dialog object, whenever one was made. Null: the call fails and writes nothing.
//   pbCancelled    out: 1 when the user cancelled, else 0. Null: the call fails and writes nothing.
// A result that does not fit its buffers (a folder or an entry of QX_PATH_SIZE characters or more) makes the
// call fail as if nothing had been chosen, with *pbCancelled 0; so does a null pszPath or ppPathList, and a
// folder or name with a character that the code page lacks.
// Needs a thread that is, or may become, a single-threaded apartment of COM: in any other it fails with the
// message box of a dialog that cannot be shown.
QXBool QX_CALL DoOpenFileDialog(const void* pReserved1, const void* pReserved2, const void* pReserved3,
                                char* pszPath, void* pUnused, uint32_t nFlags, char** ppPathList,
                                uint32_t* pnCount, void** ppDialog, QXBool* pbCancelled);

// List filters of DoOpenDirFileDialog; any other value filters nothing.
#define QX_LIST_FILES 2    // no folders in the list
#define QX_LIST_FOLDERS 3  // no files in the list; the result is one folder

// A dialog that picks a folder, or a folder and the items selected in it. 1 when the user confirmed it. What
// does not fit fails as above, and so does a folder or a selected name with a character that the code page
// lacks.
//   pszTitle       window title. Null: the call fails and writes nothing.
//   pszOkText      caption of the OK button. Null: the call fails and writes nothing.
//   pReserved      not used, but null makes the call fail and write nothing
//   pszPath        in: the initial directory; of a longer one the first 255 bytes count, without half a
//                  character. Out, when confirmed: the folder without a separator at its end. QX_PATH_SIZE
//                  bytes.
//   bFiles         file mode (1) or folder mode (0)
//   bOpen          open dialog (1) or save dialog (0)
//   nMode          list filter
//   nFlags         option flags of the system's dialog (OFN_...)
//   ppPathList     out, when confirmed: the selected items with their folder; with QX_LIST_FOLDERS the folder
//                  alone. Belongs to the dialog object and goes with it.
//   pnCount        out: number of entries, 0 unless confirmed. Null: the call fails and writes nothing.
//   ppDialog       out: the dialog object, whenever one was made. Null: the call fails and writes nothing.
//   pbCancelled    out: 1 when the user cancelled or the host quit meanwhile (WM_QUIT, which is still to be
//                  had from the thread's queue), else 0. Null: the call fails and writes nothing.
// With nothing selected the result is the folder and no entries; what was selected in another folder, before
// the user opened this one, does not count. A file is known by its whole name, to the filter as well, where
// the shell shows it without its extension. The list reaches down to the buttons, over the place of the
// system's file-name box.
QXBool QX_CALL DoOpenDirFileDialog(const char* pszTitle, const char* pszOkText, const void* pReserved,
                                   char* pszPath, QXBool bFiles, QXBool bOpen, uint32_t nMode,
                                   uint32_t nFlags, char** ppPathList, uint32_t* pnCount, void** ppDialog,
                                   QXBool* pbCancelled);

// Frees a dialog object of either function above, with the path list of DoOpenDirFileDialog. 0 for null,
// else 1.
QXBool QX_CALL DoFreeDirFileDialog(void* pDialog);

// The shell's folder browser, without a button for new folders. 1 when the user chose a folder.
//   pszPath  in: the folder to start at; an empty text starts at the process's current directory. Out: the
//            chosen folder; unchanged without one. QX_FOLDER_SIZE bytes. Null: the call fails.
// Needs a thread that is, or may become, a single-threaded apartment of COM; fails in any other.
QXBool QX_CALL QXSelectFolder(char* pszPath);

// Passes a request to the system's HTML help control, which is loaded at the first call and stays loaded.
//   hWindow   the caller's window, or null
//   pszFile   help file and topic. Null: no request, result 0.
//   nCommand  help command (HH_...)
//   nData     the command's data, widened with zeros; a pointer or a number above 32 bits cannot be passed
// 1 for every file, whatever the control says and whether there is one: a control that could not be loaded
// once is not asked for again.
QXBool QX_CALL DoHtmlHelp(void* hWindow, const char* pszFile, uint32_t nCommand, uint32_t nData);

#if defined(__cplusplus)
}
#endif

// For hosts that load the library at run time.
typedef QXBool(QX_CALL* PfnDoOpenFileDialog)(const void*, const void*, const void*, char*, void*, uint32_t,
                                             char**, uint32_t*, void**, QXBool*);
typedef QXBool(QX_CALL* PfnDoOpenDirFileDialog)(const char*, const char*, const void*, char*, QXBool, QXBool,
                                                uint32_t, uint32_t, char**, uint32_t*, void**, QXBool*);
typedef QXBool(QX_CALL* PfnDoFreeDirFileDialog)(void*);
typedef QXBool(QX_CALL* PfnQXSelectFolder)(char*);
typedef QXBool(QX_CALL* PfnDoHtmlHelp)(void*, const char*, uint32_t, uint32_t);
