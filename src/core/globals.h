#pragma once

#include "quillon/files/quillonlines.h"
#include "quillon/system/quillonsystem.h"
#include "quillon/text/quillonsenderinfo.h"
#include "quillon/text/quillontext.h"

#include <QString>

#include <array>

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

/// The settings as text, as they were last read; the slots are told by the settings table.
struct SettingsMemory {
    std::array<QString, 2> proxy;     ///< Use, Default
    std::array<QString, 1> smtp;      ///< Default
    std::array<QString, 2> signature; ///< Default, AutoAdd
    std::array<QString, 9> other;     ///< see OtherSetting
    std::array<QString, 4> position;  ///< Left, Top, Width, Height
};

/// Slots of SettingsMemory::other.
enum OtherSetting { Startup, FontName, FontSize, Encoding, Format, Interval, Times, OboInterval, DelFolder };
enum ProxySetting { ProxyUse, ProxyDefault };
enum SignatureSetting { SignatureDefault, SignatureAutoAdd };

/// What lives from the splash to the exit: the utility objects, the paths, the settings.
struct ApplicationGlobals {
    quillon::QuillonText text;
    quillon::QuillonSystem system;
    quillon::QuillonLines lines;
    quillon::QuillonSenderInfo sender; ///< the default sender

    DataPaths paths;
    SettingsMemory settings;
    QString programFolder; ///< where the programs and the language files lie
    bool RestoringFromLast = false;
};

} // namespace corvane
