#pragma once

/// Whose configuration a document belongs to. The values are those that the product's callers pass.
enum class View : int { User = 1, Application = 2, Shared = 4 };
