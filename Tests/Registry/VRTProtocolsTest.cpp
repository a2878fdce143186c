// SPDX-License-Identifier: BSD-3-Clause
#include "Registry/VRTProtocols.h"

#include "Platform/QuartzComposer/QCPatch.h"
#include "Registry/VRTExecutionTraits.h"
#include "Tests/Support/Lists.h"

namespace {

struct Role {
  const char* kind;
  const char* role;
  bool (*isOfKind)(const QCPatch&);
  QCPort* (*port)(const QCPatch&);
};

const Role roles[] = {
    {"generator", "outputImagePort", isVortoGenerator, generatorOutputImagePort},
    {"filter", "inputImagePort", isVortoFilter, filterInputImagePort},
    {"filter", "outputImagePort", isVortoFilter, filterOutputImagePort},
    {"blendMode", "inputBackgroundImagePort", isVortoBlendMode, blendModeInputImageBackgroundPort},
    {"blendMode", "inputForegroundImagePort", isVortoBlendMode, blendModeInputImageForegroundPort},
    {"blendMode", "outputImagePort", isVortoBlendMode, blendModeOutputImagePort},
    {"transition", "inputImageAPort", isVortoTransition, transitionInputImageAPort},
    {"transition", "inputImageBPort", isVortoTransition, transitionInputImageBPort},
    {"transition", "inputTimePort", isVortoTransition, transitionInputTimePort},
    {"transition", "outputImagePort", isVortoTransition, transitionOutputImagePort},
};

// A patch that declares one entry of one protocol, with a port for it.
std::unique_ptr<QCPatch> patchWith(const char* kind, PropertyList roleEntries) {
  auto patch = std::make_unique<QCPatch>(attributesOfKind(kind, std::move(roleEntries)));
  patch->addInputPort<QCImagePort>("thePort");
  return patch;
}

}  // namespace

TEST(Protocols, EveryAccessorReadsItsOwnEntryAlone) {
  for (const Role& declared : roles) {
    const auto patch = patchWith(declared.kind, dict({{declared.role, text("thePort")}}));
    for (const Role& wanted : roles) {
      const bool sameKind = std::string_view(wanted.kind) == declared.kind;
      EXPECT_EQ(wanted.isOfKind(*patch), sameKind) << declared.kind << " wanted " << wanted.kind;
      const bool sameRole = sameKind && std::string_view(wanted.role) == declared.role;
      EXPECT_EQ(wanted.port(*patch), sameRole ? patch->portForKey("thePort") : nullptr) << declared.role << wanted.role;
    }
  }
}

TEST(Protocols, MissingAndMalformedEntriesGiveNull) {
  for (const PropertyList& key : {text("noSuchPort"), text(""), PropertyList::integer(1)}) {
    const auto patch = patchWith("transition", dict({{"inputTimePort", key}}));
    EXPECT_TRUE(isVortoTransition(*patch));
    EXPECT_EQ(transitionInputTimePort(*patch), nullptr);
    EXPECT_EQ(transitionInputImageAPort(*patch), nullptr);
  }
  EXPECT_TRUE(isVortoFilter(*patchWith("filter", text("no dictionary"))));
  for (const PropertyList& attributes : {PropertyList(), PropertyList::array()}) {
    const QCPatch plain(attributes);
    EXPECT_FALSE(isVortoFilter(plain));
    EXPECT_EQ(filterInputImagePort(plain), nullptr);
  }
}

TEST(ExecutionTraits, OnlyADeclaredFalseIsFalse) {
  using P = PropertyList;
  for (const P& value : {P::boolean(true), P::integer(0), text("false"), P()}) {
    const QCPatch patch(dict({{"dependsOnTime", value}, {"keepsState", P::boolean(false)}}));
    EXPECT_TRUE(dependsOnTime(patch)) << value.typeName();
    EXPECT_FALSE(keepsState(patch));
    const QCPatch other(dict({{"dependsOnTime", P::boolean(false)}, {"keepsState", value}}));
    EXPECT_FALSE(dependsOnTime(other));
    EXPECT_TRUE(keepsState(other)) << value.typeName();
  }
  for (const P& attributes : {P(), P::array(), attributesOfKind("filter")}) {
    EXPECT_TRUE(dependsOnTime(QCPatch(attributes)) && keepsState(QCPatch(attributes))) << "it declares nothing";
  }
}

TEST(Protocols, ContextComesFromPatchesThatHaveOne) {
  struct Plain : QCPatch {
  } plain;
  struct WithoutContext : QCPatch, VortoRuntime {
  } without;
  int places[2];  // only told apart, never used
  auto* const context = reinterpret_cast<VortoExecutionContext*>(&places[0]);
  auto* const ofTheHost = reinterpret_cast<VortoExecutionContext*>(&places[1]);
  struct Hosted : QCPatch, VortoRuntime {
    VortoExecutionContext* vortoExecutionContext() override { return context; }
    VortoExecutionContext* context = nullptr;
  } hosted;
  hosted.context = context;
  EXPECT_EQ(vortoExecutionContext(plain), nullptr);
  EXPECT_EQ(vortoExecutionContext(without), nullptr);
  EXPECT_EQ(vortoExecutionContext(hosted), context);

  // The process-wide provider speaks for patches from elsewhere only.
  VortoSetExecutionContextProvider([&](QCPatch& patch) { return &patch == &plain ? ofTheHost : nullptr; });
  EXPECT_EQ(vortoExecutionContext(plain), ofTheHost);
  EXPECT_EQ(vortoExecutionContext(without), nullptr);
  EXPECT_EQ(vortoExecutionContext(hosted), context);
  VortoSetExecutionContextProvider(nullptr);
  EXPECT_EQ(vortoExecutionContext(plain), nullptr);
}