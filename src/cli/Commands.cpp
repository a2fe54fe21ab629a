// SPDX-FileCopyrightText: 2026 The Nurv Audio Workbench developers
// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Commands.h"

#include "cli/commands/ChecksumCommands.h"
#include "cli/commands/DecodeCommand.h"
#include "cli/commands/DoctorCommand.h"
#include "cli/commands/EncodeCommand.h"
#include "cli/commands/FixCommand.h"
#include "cli/commands/LossyCommand.h"
#include "cli/commands/RecoverCommand.h"
#include "cli/commands/SHNtoolCommands.h"
#include "cli/commands/SettingsCommand.h"
#include "cli/commands/TagsCommands.h"
#include "cli/commands/UtilCommands.h"

namespace nurv {

const CommandTree &commands()
{
    static const EncodeCommand encode;
    static const DecodeCommand decode;
    static const LossyCommand lossy;
    static const ChecksumCreateCommand checksumCreate;
    static const ChecksumVerifyCommand checksumVerify;
    static const ChecksumTestCommand checksumTest;
    static const FixCommand fix;
    static const SettingsCommand settings;
    static const DoctorCommand doctor;
    static const RecoverCommand recover;
    static const std::vector<std::unique_ptr<Command>> shntool = makeSHNtoolCommands();
    static const std::vector<std::unique_ptr<Command>> tags = makeTagsCommands();
    static const std::vector<std::unique_ptr<Command>> util = makeUtilCommands();
    static const CommandTree tree([] {
        std::vector<const Command *> all{&encode, &decode, &lossy, &checksumCreate, &checksumVerify, &checksumTest, &fix};
        for (const auto *const group : {&shntool, &util, &tags}) {
            for (const std::unique_ptr<Command> &command : *group)
                all.push_back(command.get());
        }
        all.insert(all.end(), {&settings, &doctor, &recover});
        return all;
    }());
    return tree;
}

} // namespace nurv
