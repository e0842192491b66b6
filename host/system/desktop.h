#pragma once

/// Whether there is a desktop on which windows can be shown to a person.
bool HasDesktop();

/// Sees to it that texts have letters where windows are drawn without a desktop. Call it before the application object
/// is made.
void SetUpOffscreenFonts();

/// Has these texts look as on the desktop, as far as the letters are there. Call it once the application object is
/// made.
void ChooseOffscreenFont();
