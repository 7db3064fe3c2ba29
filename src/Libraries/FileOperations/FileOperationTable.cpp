// SPDX-License-Identifier: GPL-3.0-or-later
// SPDX-FileCopyrightText: 2026 The Vantrope developers
#include "FileOperationTable.h"

#include "ImageOperations.h"
#include "StandardFileOperations.h"

namespace Vantrope {

namespace {

using Use = FileOperationEntry::ResultUse;
using Text = FileOperationEntry::TextUse;

OperationSettings none()
{
    return {};
}

QList<FileOperationEntry> makeEntries()
{
    QList<FileOperationEntry> entries;
    const auto add = [&entries](FileOperationType type, std::function<OperationSettings()> settings,
                                FileOperationEntry::Run run, Use use, Text text = Text::none,
                                bool output = false) {
        entries.append({type, std::move(settings), std::move(run), use, text, output, {}});
    };
    // The image operations write new files into the run's folder; the originals stay as they are.
    const auto addImage = [&entries](FileOperationType type, std::function<OperationSettings()> settings,
                                     FileOperationEntry::Run run, Text text = Text::none) {
        entries.append({type, std::move(settings), std::move(run),
                        text == Text::none ? Use::replaceContent : Use::keepContent, text, true,
                        ImageOperations::canRead});
    };
    addImage(FileOperationType::imageResize, ImageOperations::resizeSettings, ImageOperations::resize);
    addImage(FileOperationType::imageConvert, ImageOperations::convertSettings, ImageOperations::convert);
    addImage(FileOperationType::imageCompress, ImageOperations::compressSettings, ImageOperations::compress);
    addImage(FileOperationType::imageRemoveMetadata, ImageOperations::stripMetadataSettings,
             ImageOperations::stripMetadata);
    addImage(FileOperationType::imageStitch, ImageOperations::stitchSettings, ImageOperations::stitch);
    addImage(FileOperationType::imageTextRecognition, ImageOperations::recognizeTextSettings,
             ImageOperations::recognizeText, Text::clipboardAndItem);
    addImage(FileOperationType::imagesToPdf, ImageOperations::imagesToPdfSettings,
             ImageOperations::imagesToPdf);
    add(FileOperationType::setWallpaper, none, StandardFileOperations::setWallpaper, Use::keepContent);
    add(FileOperationType::copyTextContent, none, StandardFileOperations::copyTextContent, Use::keepContent,
        Text::clipboardAndItem);
    add(FileOperationType::getInfo, none, {}, Use::showInfo);
    add(FileOperationType::rename, StandardFileOperations::renameSettings, StandardFileOperations::rename,
        Use::replaceContent);
    add(FileOperationType::batchRename, StandardFileOperations::batchRenameSettings,
        StandardFileOperations::batchRename, Use::replaceContent);
    add(FileOperationType::zip, StandardFileOperations::zipSettings, StandardFileOperations::zip,
        Use::replaceContent, Text::none, true);
    add(FileOperationType::copyPath, none, StandardFileOperations::copyPath, Use::keepContent,
        Text::clipboard);
    add(FileOperationType::copyTo, StandardFileOperations::transferSettings, StandardFileOperations::copyTo,
        Use::keepContent);
    add(FileOperationType::moveTo, StandardFileOperations::transferSettings, StandardFileOperations::moveTo,
        Use::replaceContent);
    add(FileOperationType::moveToTrash, none, StandardFileOperations::moveToTrash, Use::removeInputs);
    return entries;
}

} // namespace

const QList<FileOperationEntry>& FileOperationTable::entries()
{
    static const QList<FileOperationEntry> table = makeEntries();
    return table;
}

const FileOperationEntry* FileOperationTable::entry(FileOperationType type)
{
    for (const FileOperationEntry& entry : entries()) {
        if (entry.type == type) {
            return &entry;
        }
    }
    return nullptr;
}

} // namespace Vantrope
