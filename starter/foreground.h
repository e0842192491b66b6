#pragma once

/// Lets whoever is called come to the front.
///
/// Windows lets only the program in the foreground hand that right on, and a starter that a person has just started is
/// that program. Elsewhere windows may ask for it by themselves, and this does nothing.
void HandOverForeground();
