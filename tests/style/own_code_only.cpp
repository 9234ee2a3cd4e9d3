// A plugin for clang-tidy that has its checks look at this project's declarations only. Without it
// they match every declaration of every system header, which takes most of their time.
#include <clang-tidy/ClangTidyCheck.h>
#include <clang-tidy/ClangTidyModule.h>
#include <clang-tidy/ClangTidyModuleRegistry.h>
#include <clang/AST/ASTContext.h>
#include <clang/ASTMatchers/ASTMatchFinder.h>
#include <clang/Basic/SourceManager.h>

#include <vector>

namespace {

class OwnCodeOnly : public clang::tidy::ClangTidyCheck {
 public:
  using ClangTidyCheck::ClangTidyCheck;

  void registerMatchers(clang::ast_matchers::MatchFinder* finder) override {
    finder->addMatcher(clang::ast_matchers::translationUnitDecl().bind("all"), this);
  }

  // The whole translation unit is matched first, before what it contains is looked at.
  void check(const clang::ast_matchers::MatchFinder::MatchResult& result) override {
    std::vector<clang::Decl*> own;
    // Declarations of a precompiled header are not even loaded.
    for (clang::Decl* const declaration :
         result.Context->getTranslationUnitDecl()->noload_decls()) {
      const clang::SourceLocation place = declaration->getLocation();
      if (place.isValid() && !result.SourceManager->isInSystemHeader(place)) {
        own.push_back(declaration);
      }
    }
    result.Context->setTraversalScope(own);
  }
};

class ScopeModule : public clang::tidy::ClangTidyModule {
 public:
  void addCheckFactories(clang::tidy::ClangTidyCheckFactories& factories) override {
    factories.registerCheck<OwnCodeOnly>("tintora-own-code-only");
  }
};

const clang::tidy::ClangTidyModuleRegistry::Add<ScopeModule> added("tintora", "");

}  // namespace
