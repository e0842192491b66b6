#pragma once

class QAbstractItemModel;
class QHeaderView;

/// Makes a header in mode ResizeToContents resize once per burst of changes in `model`, not at every change.
///
/// By default it measures up to a thousand rows after every change, so a status change of ten thousand entries takes
/// minutes. Changes of the tick alone are skipped, because they change no width. Call once, after the model is set.
void CoalesceColumnResizing(QHeaderView* header, const QAbstractItemModel* model);
