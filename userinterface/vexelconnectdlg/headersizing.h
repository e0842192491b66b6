#pragma once

class QAbstractItemModel;
class QHeaderView;

/// Lets a header that sizes its columns by their contents do so once after a burst of changes in `model`.
///
/// Left to itself it measures up to a thousand rows after every single change and before the view may go on, which
/// makes a change of status in each of ten thousand entries take minutes. A change of the tick alone changes no width.
/// Call once, when the header has the model.
void SizeOncePerBurst(QHeaderView* header, const QAbstractItemModel* model);
