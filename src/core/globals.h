#pragma once

#include "core/settingsmemory.h"
#include "quillon/files/quillonlines.h"
#include "quillon/system/quillonsystem.h"
#include "quillon/text/quillontext.h"

#include <QString>

namespace corvane {

/// Paths of the data tree, "/" between their parts, no "/" at the end of a folder.
struct DataPaths {
    QString user;   ///< the per-user application data folder
    QString shared; ///< that of all users
    QString root;
    QString data;
    QString signs;
    QString templates;
    QString logs;
    QString zips;
    QString templatesFile;
    QString sendersFile;
    QString signsFile;
    QString queuesFile;
    QString optionsFile;
    QString promptsFile;
    QString macrosFile;
    QString proxyFile;
    QString smtpFile;
    QString markerFile;
};

/// What lives from the splash to the exit: the utility objects, the paths, the settings.
struct ApplicationGlobals {
    quillon::QuillonText text;
    quillon::QuillonSystem system;
    quillon::QuillonLines lines;

    DataPaths paths;
    SettingsMemory settings;
    QString programFolder; ///< where the programs and the language files lie
    bool RestoringFromLast = false;
};

} // namespace corvane
