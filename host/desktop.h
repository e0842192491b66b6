#pragma once

/// Whether there is a desktop on which windows can be shown to a person.
bool HasDesktop();
