#pragma once

#include "OrbelTypes.h"

namespace kestrix {

/// Command words and flag bits of OrbelIDE, OrbelIDE2 and OrbelIDE3.
struct OrbelIDEFlags {
    /// Flag word of Document. The top four bits give a command, the low bits an opening or
    /// closing action, bits 16 to 18 and 24 to 27 further selectors.
    enum EDocumentFlags : DWORD {
        dfClose = 0x00000001,
        dfCloseAll = 0x00000002,
        dfSave = 0x00000003,
        /// strParameter: the new name.
        dfSaveAs = 0x00000004,
        dfSaveAsPrompt = 0x00000005,
        /// Opening action of the modes "a" and "w" without a file name.
        dfOpenNew = 0x00000008,
        /// Opening action of the modes "r" and "u" with a file name.
        dfOpenFile = 0x00000009,
        /// Opening action of the modes "r" and "u" without a file name.
        dfOpenDefault = 0x0000000A,
        dfCloseDiscard = 0x0000000B,
        /// Save as with the option of saveAs.
        dfSaveAsOption = 0x0000000C,
        /// Opening action of the modes "a" and "w" with a file name.
        dfOpenNewFile = 0x0000000D,
        dfActionMask = 0x0000000F,
        /// dwParameter: the marker's value.
        dfSetMarker = 0x00010000,
        dfClearMarker = 0x00020000,
        /// dwParameter: the focus value.
        dfSetFocus = 0x00040000,
        /// Document type bits, ORed into the "w" and "a" openings only.
        dfTypeAnalyzer = 0x01000000,
        dfTypeCoverage = 0x02000000,
        /// Selects the terminal document; ORed with the terminal's action.
        dfTerminal = 0x01080000,
        dfStart = 0x10000000,
        /// S_FALSE: was not running.
        dfStop = 0x20000000,
        /// S_OK active, S_FALSE not.
        dfIsActive = 0x30000000,
        dfResume = 0x40000000,
        /// strParameter: the trigger's name.
        dfSelectTrigger = 0x50000000,
        /// ORed with the export type; strParameter: the file, dwParameter: the option.
        dfExport = 0x60000000,
        dfExportAndLaunchViewer = 0x70000000,
        /// strParameter: the format text.
        dfSetExportFormat = 0x80000000,
        /// dwParameter: the value; ORed with an opening action: reset on opening.
        dfReset = 0xA0000000,
        dfCommandMask = 0xF0000000
    };

    /// Command of Workspace.
    enum EWorkspaceCommand : DWORD {
        wsClose = 1,
        wsSave = 3,
        wsSaveAs = 4,
        wsNew = 7,
        /// S_FALSE: not opened.
        wsOpen = 9,
        wsCloseDiscard = 11
    };

    /// Command of Application.
    enum EApplicationCommand : DWORD {
        /// setMsgBoxHookMode with a mode other than 0, 1, 2.
        acMsgBoxHookModeOther = 0x00,
        acActivate = 0x01,
        acMinimize = 0x02,
        acRestore = 0x03,
        acMaximize = 0x04,
        /// The rectangle of SApplicationData in.
        acMove = 0x05,
        acMsgBoxHookOn = 0x10,
        acMsgBoxHookOff = 0x20,
        /// S_OK on, S_FALSE off.
        acIsMsgBoxHookOn = 0x30,
        acMsgBoxHookMode2 = 0x40,
        acMsgBoxHookMode0 = 0x50
    };

    /// Request and answer bits of SQuillonVersionInfo::m_dwFlags.
    enum EVersionRequest : DWORD {
        vrVersion = 0x01,
        vrMainWindow = 0x02,
        vrNumClients = 0x04,
        /// Folders of getPath(0), getPath(1), getPath(2).
        vrPath0 = 0x10,
        vrPath1 = 0x30,
        vrPath2 = 0x20,
        vrPathMask = 0x30
    };

    /// Flag word of Option: a value kind, a module, an operation.
    enum EOptionFlags : DWORD {
        ofString = 0x00000001,
        ofInteger = 0x00000002,
        ofFloat = 0x00000003,
        /// Text "name:value" in m_pszStringIn, the option name "".
        ofNameValue = 0x0000000E,
        ofKindMask = 0x0000000F,
        ofModuleIDE = 0x00,
        ofModuleDocument = 0x10,
        ofModuleVALKE = 0x20,
        ofModulePlugin = 0x30,
        ofModuleHIL = 0x40,
        ofModuleMask = 0xF0,
        /// Index in m_dwInteger.
        ofAddDynamic = 0x01000000,
        ofRemoveDynamic = 0x02000000,
        /// Answer in m_dwInteger.
        ofDynamicSize = 0x03000000,
        ofDynamicMask = 0x03000000,
        /// Scope and name null.
        ofCommit = 0x40000000,
        ofRead = 0x80000000
    };

    /// Flag word of every ServiceCall and ServiceCallData.
    static constexpr DWORD SERVICE_CALL_FLAGS = 0x10000000;

    /// Command word of the flash service.
    enum EFlashCommand : DWORD {
        flashErase = 1,
        flashSecure = 2,
        flashUnsecure = 3
    };
};

} // namespace kestrix
