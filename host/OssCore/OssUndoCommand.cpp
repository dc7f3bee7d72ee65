#include "OssUndoCommand.h"

OssUndoCommand::OssUndoCommand(const QString &text) : m_text(text) {}

OssUndoCommand::~OssUndoCommand() = default;
