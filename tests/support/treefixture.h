#pragma once

#include "support/temporarytree.h"

#include <memory>

/// A data tree that each test gets anew: a test's init() makes it, its cleanup() takes it away.
class TreeFixture {
protected:
    /// A tree as it is after a first start.
    void makeTree()
    {
        makeBareTree();
        m_tree->prepare();
    }
    /// Its folders only, for tests of what a first start does.
    void makeBareTree() { m_tree = std::make_unique<TemporaryTree>(); }
    void dropTree() { m_tree.reset(); }

    [[nodiscard]] corvane::ApplicationGlobals &globals() const { return m_tree->globals; }

    std::unique_ptr<TemporaryTree> m_tree;
};
