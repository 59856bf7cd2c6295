#pragma once
// selvane-cli run as a program in a test's program folder with its own settings file, under a
// chosen locale and without the caller's Selvane environment.

#include <QProcess>
#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace clitest {

struct CliRun
{
    int exit = -1;                  // -1: killed or crashed
    std::vector<std::string> lines; // stdout, split at line ends
    std::string err;
};

inline std::vector<std::string> Split(const std::string& text, char separator)
{
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (;;) {
        const std::size_t end = text.find(separator, start);
        parts.push_back(text.substr(start, end - start));
        if (end == std::string::npos)
            return parts;
        start = end + 1;
    }
}

// Starts selvane-cli with --home and --settings in the folder home; path, when given, is the
// program search path of the run.
inline void StartCli(QProcess& process, const QString& home, const QStringList& args,
                     const QString& lang = "C", const QString& path = {})
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const char* name :
         {"SELVANE_HOME", "SELVANE_SETTINGS", "LC_ALL", "LC_TIME", "LC_NUMERIC", "LANGUAGE"})
        env.remove(name);
    env.insert("LANG", lang);
    if (!path.isEmpty())
        env.insert("PATH", path);
    process.setProcessEnvironment(env);
    process.start(SELVANE_CLI, QStringList{"--home", home, "--settings", home + "/s.ini"} + args);
}

inline CliRun Finish(QProcess& process)
{
    CliRun run;
    run.exit = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    std::string out = process.readAllStandardOutput().toStdString();
    if (!out.empty() && out.back() == '\n')
        out.pop_back();
    if (!out.empty())
        run.lines = Split(out, '\n');
    run.err = process.readAllStandardError().toStdString();
    return run;
}

inline CliRun RunCli(const QString& home, const QStringList& args, const QString& lang = "C",
                     const QString& path = {})
{
    QProcess process;
    StartCli(process, home, args, lang, path);
    EXPECT_TRUE(process.waitForFinished(120000));
    return Finish(process);
}

} // namespace clitest
